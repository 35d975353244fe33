// Pictures for the tool's tests, made and read with libvips.
#pragma once

#include <array>
#include <string>
#include <vips/vips8>

namespace lumora::test {

using Channels = std::array<int, 4>;

// A colourful picture without symmetry: every turn and mirror image of it differs. 3 or 4 bands,
// 8 or 16 bits.
vips::VImage colourfulPicture(int width, int height, int bands = 3, bool wide = false);

// The picture as it is to be seen: upright, eight bits, red, green, blue and, if present, alpha.
vips::VImage openUpright(const std::string& path);

// The black-and-white look by its formula.
vips::VImage blackAndWhite(const vips::VImage& picture);

// The greatest difference of any sample; sizes and bands must agree.
double greatestDifference(const vips::VImage& a, const vips::VImage& b);

}  // namespace lumora::test
