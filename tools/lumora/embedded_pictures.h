// Metadata that can hold pictures beside its facts: the pictures are taken out. They show the
// photograph as it was before the look.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "exif.h"

namespace lumora::tool {

// Whether a text holds a run of Base64 or hexadecimal digits, longer than any word.
bool holdsPicture(std::string_view text);

// XMP with such runs left out; nothing where it is not text.
Bytes xmpWithoutPictures(Bytes xmp);

// The records of an IPTC block without previews: out of Photoshop's resources, as JPEG files have
// them, or bare, as TIFF files have them. Of the resources nothing else is taken.
Bytes iptcWithoutPictures(const Bytes& block);
// Bare records as the resource block of a JPEG file.
Bytes iptcForJpeg(const Bytes& records);

}  // namespace lumora::tool
