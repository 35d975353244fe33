// lumora apply: what comes out, in every format that goes in.
#include <algorithm>
#include <filesystem>

#include "pictures.h"

namespace lumora::test {
namespace {

namespace fs = std::filesystem;
using vips::VImage;

class ApplyTest : public PictureTest {};

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
    succeed("apply --look heibai " + file + " grey.png");
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

    succeed("apply -l 12 phone.jpg upright.tif");

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
  std::size_t bytes = 0;
  const void* profile = screen.get_blob(VIPS_META_ICC_NAME, &bytes);
  ASSERT_GT(bytes, 20u);
  EXPECT_EQ(std::string(static_cast<const char*>(profile) + 16, 4), "RGB ");
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
}

TEST_F(ApplyTest, OverwritesInPlaceKeepingModeAndLinks) {
  writePicture("original.png");
  writePicture("real.png");
  fs::create_symlink("real.png", pathOf("link.png"));
  fs::permissions(pathOf("real.png"), fs::perms{0640});
  succeed("apply -l heibai real.png link.png");
  EXPECT_TRUE(fs::is_symlink(pathOf("link.png")));
  EXPECT_EQ(fs::status(pathOf("real.png")).permissions(), fs::perms{0640});
  expectBlackAndWhite("real.png", "original.png");
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
