// lumora apply: what comes out, in every format that goes in.
#include <algorithm>

#include "pictures.h"

namespace lumora::test {
namespace {

using vips::VImage;

class ApplyTest : public PictureTest {
 protected:
  std::string profileOf(const std::string& name) const {
    std::size_t bytes = 0;
    const VImage picture = stored(name);
    const void* const profile = picture.get_blob(VIPS_META_ICC_NAME, &bytes);
    return {static_cast<const char*>(profile), bytes};
  }
};

TEST_F(ApplyTest, GivesTheLookOfTheDecodedPixels) {
  struct Case {
    std::string file;
    const char* options;  // of libvips's saver
    int bands;
    bool wide;
  };
  for (const auto& [file, options, bands, wide] :
       {Case{"in.jpg", "[Q=95]", 3, false}, Case{"in.png", "", 3, false},
        Case{"in.png", "", 4, false}, Case{"in.png", "[palette=true]", 3, false},
        Case{"in.png", "", 4, true}, Case{"in.tif", "", 3, true},
        Case{"in.tif", "[compression=lzw]", 3, false}, Case{"in.webp", "[Q=90]", 3, false},
        Case{"in.webp", "[lossless=true]", 4, false}}) {
    SCOPED_TRACE(file + options);
    writePicture(file + options, colourfulPicture(123, 97, bands, wide));
    succeed("apply --force --look heibai " + file + " grey.png");
    expectBlackAndWhite("grey.png", file);
  }
}

TEST_F(ApplyTest, WritesTheFormatOfTheName) {
  writePicture("in.png", colourfulPicture(160, 120, 4));
  const VImage grey = blackAndWhite(open("in.png"));
  const VImage onWhite = grey.flatten(VImage::option()->set("background", 255));
  struct Case {
    const char* file;
    const char* loader;
    VImage expected;
    double tolerance;
  };
  for (const auto& [file, loader, expected, tolerance] :
       {Case{"out.png", "pngload", grey, 0}, Case{"out.tif", "tiffload", grey, 0},
        Case{"out.webp", "webpload", grey, 12}, Case{"out.JPG", "jpegload", onWhite, 6}}) {
    succeed(std::string("apply -l heibai in.png ") + file);
    EXPECT_STREQ(stored(file).get_string("vips-loader"), loader);
    EXPECT_LE(greatestDifference(open(file), expected), tolerance) << file;
  }
}

TEST_F(ApplyTest, TurnsEveryOrientationUpright) {
  for (int orientation = 1; orientation <= 8; ++orientation) {
    VImage picture = colourfulPicture(140, 100).copy();
    picture.set(VIPS_META_ORIENTATION, orientation);
    writePicture("phone.jpg", picture);
    ASSERT_EQ(vips_image_get_orientation(stored("phone.jpg").get_image()), orientation);

    succeed("apply --force -l 12 phone.jpg upright.tif");

    const VImage upright = stored("upright.tif");
    EXPECT_EQ(vips_image_get_orientation(upright.get_image()), 1);
    EXPECT_EQ(upright.width(), orientation < 5 ? 140 : 100);
    expectBlackAndWhite("upright.tif", "phone.jpg");
  }
}

TEST_F(ApplyTest, ConvertsOtherColourModels) {
  const VImage picture = colourfulPicture(120, 90);
  writePicture("grey.jpg", picture.colourspace(VIPS_INTERPRETATION_B_W));
  writePicture("print.jpg[Q=100]",
               picture.icc_export(VImage::option()->set("output_profile", "cmyk")));

  succeed("apply -l heibai -d out --to png grey.jpg print.jpg");

  EXPECT_EQ(greatestDifference(open("out/grey.png"), open("grey.jpg")), 0);
  const VImage screen = stored("out/print.png");
  EXPECT_EQ(screen.bands(), 3);
  // CMYK cannot show every colour, so the mean decides.
  EXPECT_NEAR(screen.avg(), blackAndWhite(picture).avg(), 12);
  // Bytes 16 to 19 of a profile name the colour model of the pixels it is for.
  EXPECT_EQ(profileOf("out/print.png").substr(16, 4), "RGB ");
}

// The same photograph in another colour space gets the same look, and stays in sRGB.
TEST_F(ApplyTest, WideGamutsBecomeSrgbUnlessTheyShallStay) {
  writePicture("plain.png", colourfulPicture(120, 90).icc_transform(
                                "srgb", VImage::option()->set("input_profile", "srgb")));
  for (const int depth : {8, 16}) {
    writePicture("wide.png",
                 stored("plain.png").icc_transform("p3", VImage::option()->set("depth", depth)));
    for (const char* look : {"heibai", "xpro2", "moran"}) {
      SCOPED_TRACE(std::to_string(depth) + look);
      const std::string apply = std::string("apply --force -l ") + look;
      succeed(apply + " plain.png expected.png");
      succeed(apply + " wide.png converted.png");
      succeed(apply + " --profile keep wide.png kept.png");
      const auto meanError = [this](const char* name) {
        return (stored(name) - stored("expected.png")).abs().avg();
      };
      EXPECT_LT(meanError("converted.png"), 0.7);
      EXPECT_GT(meanError("kept.png"), 2 * meanError("converted.png"));
      EXPECT_EQ(profileOf("converted.png"), profileOf("plain.png"));
      EXPECT_EQ(profileOf("kept.png"), profileOf("wide.png"));
    }
  }
}

TEST_F(ApplyTest, StrengthBlendsEveryPictureWithItsOriginal) {
  for (const char* name : {"a.png", "b.png", "c.png"}) writePicture(name);
  succeed("apply -l heibai -s 0 -d half a.png b.png c.png");
  succeed("apply -l heibai -s 32 a.png full.png");
  const VImage original = open("a.png");
  const VImage half = ((original * 8 + blackAndWhite(original) * 8 + 8) / 16).floor();
  EXPECT_EQ(greatestDifference(open("half/a.png"), half), 0);
  EXPECT_EQ(readFile("half/a.png"), readFile("half/c.png"));
  expectBlackAndWhite("full.png", "a.png");
}

// The image library's workers race to the end of a picture; only one of them sees what is missing.
TEST_F(ApplyTest, NoticesEveryTimeThatAPictureEndsTooEarly) {
  writePicture("in.png");
  shell("head -c 17000 in.png > cut.png");
  const ToolResult all = runShell(
      "export VIPS_CONCURRENCY=32; for i in $(seq 40); do lumora apply -l 1 cut.png out.png; done");
  EXPECT_EQ(std::count(all.error.begin(), all.error.end(), '\n'), 40) << all.error;
  EXPECT_EQ(listFolder(), (Words{"cut.png", "in.png"}));
}

TEST_F(ApplyTest, StandardInputAndOutput) {
  writePicture("in.png");
  succeed("apply -l heibai --to png - - < in.png > out.png");
  expectBlackAndWhite("out.png", "in.png");
  // Without --to the format is the input's, told by its content.
  succeed("apply -l heibai - - < in.png > same.png");
  EXPECT_EQ(readFile("same.png"), readFile("out.png"));
  writePicture("in.gif");
  refuse(1, "apply -l heibai in.gif -", "in.gif: GIF is not written; choose with --to");
}

TEST_F(ApplyTest, DrawsTheSameSampleSceneEverywhere) {
  succeed("sample --size 320x240 scene.png");
  std::size_t bytes = 0;
  void* const pixels = open("scene.png").write_to_memory(&bytes);
  char* const checksum =
      g_compute_checksum_for_data(G_CHECKSUM_MD5, static_cast<guchar*>(pixels), bytes);
  EXPECT_EQ(bytes, 320u * 240 * 3);
  EXPECT_STREQ(checksum, "75c415e5167cdb08eb4d184d8c7fcd10");
  g_free(checksum);
  g_free(pixels);
}

}  // namespace
}  // namespace lumora::test
