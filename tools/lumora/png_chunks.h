// What a PNG file's chunks ask for before any is unpacked.
#pragma once

#include "picture_file.h"

namespace lumora::tool {

// The decoder unpacks every compressed text, each to as much as 8 MB from a thousandth of that.
// Throws a PictureError for more of them than pictures have, or more chunks.
void requireFewTexts(const PictureFile& file);

}  // namespace lumora::tool
