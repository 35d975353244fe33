// What a picture's file says about the picture, as known fields that can be put into another file.
#pragma once

#include <string>
#include <utility>
#include <vector>
#include <vips/vips8>

#include "exif.h"
#include "formats.h"
#include "picture_file.h"

namespace lumora::tool {

// Without the previews and further pictures of the file; there is at most a note that it had a
// thumbnail, to be drawn anew.
struct Metadata {
  double horizontalResolution = 1;  // pixels per millimetre
  double verticalResolution = 1;
  std::string resolutionUnit;  // to show it in; may be empty
  Bytes profile;
  Exif exif;
  Bytes xmp;
  Bytes iptc;                                                 // bare records
  std::vector<std::pair<std::string, std::string>> comments;  // of PNG files, by field name
  bool hasThumbnail = false;
  bool lostProfile = false;  // it is damaged or not for the picture's colours
};

// Of the image as it was read from the file; the profile is that of the pixels as they are used.
Metadata readMetadata(const vips::VImage& image, const vips::VImage& rgb, const PictureFile& file);

// Leaves the resolution, the profile and short EXIF fields: nothing that could hold a picture.
void stripMetadata(Metadata& metadata);

// Gives the image what a file of the format can hold.
void setMetadata(vips::VImage& image, const Metadata& metadata, const Format& format);
// What a file of the format lacks although others of its kind have it, as the rest of a sentence
// about the picture; empty where nothing is lost.
std::string lossIn(const Metadata& metadata, const Format& format);
// Gives the encoded file what the image library cannot put there.
void finishMetadata(Bytes& file, const Metadata& metadata, const Format& format);

}  // namespace lumora::tool
