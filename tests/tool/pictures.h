// Pictures for the tool's tests, made and read with libvips.
#pragma once

#include <string>
#include <vips/vips8>

#include "tool_runner.h"

namespace lumora::test {

// A colourful picture without symmetry: every turn and mirror image of it differs. 3 or 4 bands,
// 8 or 16 bits.
vips::VImage colourfulPicture(int width, int height, int bands = 3, bool wide = false);

// The black-and-white look by its formula.
vips::VImage blackAndWhite(const vips::VImage& picture);

// The greatest difference of any sample; infinite where sizes or bands disagree.
double greatestDifference(const vips::VImage& a, const vips::VImage& b);

class PictureTest : public ToolTest {
 protected:
  static void SetUpTestSuite();

  // The name may have libvips's saver options behind it: "a.jpg[Q=95]".
  void writePicture(const std::string& name, const vips::VImage& picture) const;
  void writePicture(const std::string& name, int width = 128, int height = 96) const;
  // As the file has it, with its metadata.
  vips::VImage stored(const std::string& name) const;
  // As it is to be seen: upright, eight bits, red, green, blue and, if present, alpha.
  vips::VImage open(const std::string& name) const;
  void expectBlackAndWhite(const std::string& result, const std::string& original) const;
};

}  // namespace lumora::test
