// Tables of colours as pictures.
#pragma once

#include <string>
#include <vips/vips8>

#include "lut/lut.h"

namespace lumora::tool {

// A Hald picture of level n holds a table of size n^2, entry by entry, in n^3 x n^3 pixels.
inline constexpr int kLowestHaldLevel = 2;
inline constexpr int kHighestHaldLevel = 16;
vips::VImage haldPicture(const lut::Lut& lut);

// The square of 8 x 8 tiles that streaming programs read: a table of this size, a tile per blue.
inline constexpr int kTilesSize = 64;
vips::VImage tilesPicture(const lut::Lut& lut);

// A table from a .cube file, or else from a Hald picture. Throws a PictureError with the file's
// name in it, and the line where it is one of text.
lut::Lut readLut(const std::string& path);

}  // namespace lumora::tool
