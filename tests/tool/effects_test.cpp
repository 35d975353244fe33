// The looks that work on a part of the picture, through the options that name the part.
#include "pictures.h"

namespace lumora::test {
namespace {

using vips::VImage;

struct Part {
  int left, top, width, height;
};

VImage crop(const VImage& picture, const Part& part) {
  return picture.crop(part.left, part.top, part.width, part.height);
}

class EffectsTest : public PictureTest {
 protected:
  VImage apply(const std::string& options) const {
    succeed("apply --force in.png out.png " + options);
    return open("out.png");
  }
};

TEST_F(EffectsTest, MosaicStaysInsideItsRectangle) {
  const VImage picture = colourfulPicture(200, 150);
  writePicture("in.png", picture);
  const VImage out = apply("-l mosaic --rect 40,30,64,48 --block 16");
  // With the rectangle taken from the original nothing has changed.
  EXPECT_EQ(greatestDifference(out.insert(picture.crop(40, 30, 64, 48), 40, 30), picture), 0);
  for (int y = 30; y < 78; y += 16) {
    for (int x = 40; x < 104; x += 16) {
      for (int band = 0; band < 3; ++band) {
        const VImage block = out.extract_band(band).crop(x, y, 16, 16);
        EXPECT_EQ(block.min(), block.max()) << x << ',' << y;
        EXPECT_NEAR(block.avg(), picture.extract_band(band).crop(x, y, 16, 16).avg(), 1.5);
      }
    }
  }
}

TEST_F(EffectsTest, ColourFixKeepsOneColourWhereTheMaskAllows) {
  // Red on the left, blue on the right; the mask allows the upper half.
  const VImage left = VImage::black(100, 160).new_from_image({200.0, 40.0, 30.0});
  const VImage right = VImage::black(100, 160).new_from_image({30.0, 60.0, 210.0});
  const VImage picture = left.join(right, VIPS_DIRECTION_HORIZONTAL);
  writePicture("in.png", picture.cast(VIPS_FORMAT_UCHAR));
  const VImage no = VImage::black(20, 8), yes = no.linear(1, 255);
  writePicture("mask.png", yes.join(no, VIPS_DIRECTION_VERTICAL).cast(VIPS_FORMAT_UCHAR));
  const auto isGrey = [](const VImage& part) {
    return greatestDifference(part.extract_band(0), part.extract_band(1)) <= 1 &&
           greatestDifference(part.extract_band(1), part.extract_band(2)) <= 1;
  };
  for (const char* colour : {"--colour '#c8281e'", "--pick 10,150"}) {
    const std::string options = std::string("-l colour-fix --tolerance 10 ") + colour;
    const VImage out = apply(options);
    EXPECT_EQ(greatestDifference(out.crop(0, 0, 100, 160), picture.crop(0, 0, 100, 160)), 0);
    EXPECT_TRUE(isGrey(out.crop(100, 0, 100, 160)));
    const VImage masked = apply(options + " --mask mask.png");
    EXPECT_EQ(greatestDifference(masked.crop(0, 0, 100, 70), picture.crop(0, 0, 100, 70)), 0);
    EXPECT_TRUE(isGrey(masked.crop(0, 90, 100, 70)));
  }
}

TEST_F(EffectsTest, BlursKeepTheirPartSharpAndBlurTheRest) {
  struct Case {
    const char* options;
    Part sharp;    // stays as it is
    Part blurred;  // loses its contrast
  };
  // Every blur shows in noise.
  const auto settings = VImage::option()->set("sigma", 60)->set("mean", 128)->set("seed", 7);
  writePicture("in.png", VImage::gaussnoise(240, 200, settings).cast(VIPS_FORMAT_UCHAR));
  const VImage picture = open("in.png");
  for (const auto& [options, sharp, blurred] :
       {Case{"-l blur --centre 80,90 --radius 40,60",
             {54, 64, 52, 52},  // within the circle: its corners are 37 away
             {160, 0, 80, 200}},
        Case{"-l blur --centre 0,0 --radius 30,30", {0, 0, 20, 20}, {60, 60, 180, 140}},
        Case{"-l tilt-shift --band 120,60,120,140 --core 16",
             {0, 82, 240, 36},  // the band's middle half is 80..120
             {0, 150, 240, 50}},
        Case{"-l tilt-shift --band 40,100,100,100 --core 32",
             {42, 0, 56, 200},
             {130, 0, 110, 200}}}) {
    SCOPED_TRACE(options);
    const VImage out = apply(options);
    EXPECT_EQ(greatestDifference(crop(out, sharp), crop(picture, sharp)), 0);
    EXPECT_LT(crop(out, blurred).deviate(), 0.3 * crop(picture, blurred).deviate());
  }
}

TEST_F(EffectsTest, FilmIsRepeatableWithASeed) {
  writePicture("in.png", 600, 400);
  const auto aged = [this](const char* seed) { return apply(std::string("-l 5 --seed ") + seed); };
  const VImage first = aged("1").copy_memory();
  EXPECT_EQ(greatestDifference(aged("1"), first), 0);
  EXPECT_GT(greatestDifference(aged("2"), first), 0);
  EXPECT_GT(greatestDifference(apply("-l 5"), first), 0);

  const auto sheet = [this](const std::string& seed) {
    succeed("gallery --force -l 5 --seed " + seed + " in.png sheet.png");
    return readFile("sheet.png");
  };
  EXPECT_TRUE(sheet("1") == sheet("1"));
  EXPECT_FALSE(sheet("1") == sheet("2"));
}

}  // namespace
}  // namespace lumora::test
