// The looks that work on a part of the picture, through the options that name the part.
#include <gtest/gtest.h>

#include <ostream>

#include "pictures.h"
#include "tool_runner.h"

namespace lumora::test {
namespace {

using vips::VImage;

// Grey noise: every blur shows in it.
VImage noise(int width, int height) {
  const VImage grey =
      VImage::gaussnoise(width, height,
                         VImage::option()->set("sigma", 60)->set("mean", 128)->set("seed", 7))
          .cast(VIPS_FORMAT_UCHAR);
  return grey.bandjoin(grey).bandjoin(grey).copy(
      VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
}

class EffectsTest : public ToolTest {
 protected:
  VImage apply(const VImage& picture, std::vector<std::string> options) const {
    picture.write_to_file(pathOf("in.png").c_str());
    options.insert(options.begin(), "apply");
    options.insert(options.end(), {"in.png", "out.png"});
    const ToolResult result = run(options);
    EXPECT_EQ(result.exitCode, 0) << result.standardError;
    return openUpright(pathOf("out.png"));
  }
};

TEST_F(EffectsTest, MosaicStaysInsideItsRectangle) {
  const VImage picture = colourfulPicture(200, 150);
  const VImage out = apply(picture, {"-l", "mosaic", "--rect", "40,30,64,48", "--block", "16"});
  // With the rectangle taken from the original nothing has changed.
  EXPECT_EQ(greatestDifference(out.insert(picture.crop(40, 30, 64, 48), 40, 30), picture), 0);
  for (int y = 30; y < 78; y += 16) {
    for (int x = 40; x < 104; x += 16) {
      const VImage block = out.crop(x, y, 16, 16);
      for (int band = 0; band < 3; ++band) {
        const VImage channel = block.extract_band(band);
        EXPECT_EQ(channel.min(), channel.max()) << x << ',' << y;
        EXPECT_NEAR(channel.avg(), picture.extract_band(band).crop(x, y, 16, 16).avg(), 1.5);
      }
    }
  }
}

TEST_F(EffectsTest, ColourFixKeepsOneColourWhereTheMaskAllows) {
  // Red on the left, blue on the right; the mask allows the upper half.
  const VImage left = VImage::black(100, 160).new_from_image({200.0, 40.0, 30.0});
  const VImage right = VImage::black(100, 160).new_from_image({30.0, 60.0, 210.0});
  const VImage picture =
      left.join(right, VIPS_DIRECTION_HORIZONTAL)
          .cast(VIPS_FORMAT_UCHAR)
          .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
  VImage::black(20, 8)
      .linear(1, 255)
      .join(VImage::black(20, 8), VIPS_DIRECTION_VERTICAL)
      .cast(VIPS_FORMAT_UCHAR)
      .write_to_file(pathOf("mask.png").c_str());
  const auto isGrey = [](const VImage& part) {
    return greatestDifference(part.extract_band(0), part.extract_band(1)) <= 1 &&
           greatestDifference(part.extract_band(1), part.extract_band(2)) <= 1;
  };
  for (const std::vector<std::string>& colour :
       {std::vector<std::string>{"--colour", "#c8281e"}, {"--pick", "10,150"}}) {
    std::vector<std::string> options = {"-l", "colour-fix", "--tolerance", "10"};
    options.insert(options.end(), colour.begin(), colour.end());
    const VImage out = apply(picture, options);
    EXPECT_EQ(greatestDifference(out.crop(0, 0, 100, 160), picture.crop(0, 0, 100, 160)), 0);
    EXPECT_TRUE(isGrey(out.crop(100, 0, 100, 160)));
    options.insert(options.end(), {"--mask", "mask.png"});
    const VImage masked = apply(picture, options);
    EXPECT_EQ(greatestDifference(masked.crop(0, 0, 100, 70), picture.crop(0, 0, 100, 70)), 0);
    EXPECT_TRUE(isGrey(masked.crop(0, 90, 100, 70)));
  }
}

struct Part {
  int left, top, width, height;
};

struct FocusCase {
  const char* name;
  std::vector<std::string> options;
  Part sharp;    // stays as it is
  Part blurred;  // loses its contrast
};

void PrintTo(const FocusCase& focus, std::ostream* out) { *out << focus.name; }

class FocusTest : public EffectsTest, public testing::WithParamInterface<FocusCase> {};

TEST_P(FocusTest, KeepsItsPartSharpAndBlursTheRest) {
  const FocusCase& focus = GetParam();
  const VImage picture = noise(240, 200);
  const VImage out = apply(picture, focus.options);
  const auto part = [](const VImage& of, const Part& r) {
    return of.crop(r.left, r.top, r.width, r.height);
  };
  EXPECT_EQ(greatestDifference(part(out, focus.sharp), part(picture, focus.sharp)), 0);
  EXPECT_LT(part(out, focus.blurred).deviate(), 0.3 * part(picture, focus.blurred).deviate());
}

INSTANTIATE_TEST_SUITE_P(
    Looks, FocusTest,
    testing::Values(FocusCase{"Blur",
                              {"-l", "blur", "--centre", "80,90", "--radius", "40,60"},
                              {54, 64, 52, 52},  // within the circle: its corners are 37 away
                              {160, 0, 80, 200}},
                    FocusCase{"HardBlur",
                              {"-l", "blur", "--centre", "0,0", "--radius", "30,30"},
                              {0, 0, 20, 20},
                              {60, 60, 180, 140}},
                    FocusCase{"LevelBand",
                              {"-l", "tilt-shift", "--band", "120,60,120,140", "--core", "16"},
                              {0, 82, 240, 36},  // the band's middle half is 80..120
                              {0, 150, 240, 50}},
                    FocusCase{"UprightBand",
                              {"-l", "tilt-shift", "--band", "40,100,100,100", "--core", "32"},
                              {42, 0, 56, 200},
                              {130, 0, 110, 200}}),
    [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace lumora::test
