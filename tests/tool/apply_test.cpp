// lumora apply: what comes out, in every format that goes in.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <ostream>

#include "pictures.h"
#include "tool_runner.h"

namespace lumora::test {
namespace {

using vips::VImage;

struct InputCase {
  const char* name;
  const char* file;  // with libvips's saver options
  int bands;
  bool wide;
};

void PrintTo(const InputCase& input, std::ostream* out) { *out << input.file; }

class ApplyToInput : public ToolTest, public testing::WithParamInterface<InputCase> {};

TEST_P(ApplyToInput, GivesTheLookOfItsDecodedPixels) {
  const InputCase& input = GetParam();
  const VImage picture = colourfulPicture(123, 97, input.bands, input.wide);
  picture.write_to_file(pathOf(input.file).c_str());
  const std::string file = std::string(input.file).substr(0, std::string(input.file).find('['));

  const ToolResult result = run({"apply", "--look", "heibai", file, "grey.png"});

  ASSERT_EQ(result.exitCode, 0) << result.standardError;
  EXPECT_EQ(result.standardError, "");
  EXPECT_EQ(
      greatestDifference(openUpright(pathOf("grey.png")), blackAndWhite(openUpright(pathOf(file)))),
      0);
}

INSTANTIATE_TEST_SUITE_P(Formats, ApplyToInput,
                         testing::Values(InputCase{"Jpeg", "in.jpg[Q=95]", 3, false},
                                         InputCase{"Png", "in.png", 3, false},
                                         InputCase{"PngWithAlpha", "in.png", 4, false},
                                         InputCase{"PngPalette", "in.png[palette=true]", 3, false},
                                         InputCase{"Png16BitWithAlpha", "in.png", 4, true},
                                         InputCase{"Tiff16Bit", "in.tif", 3, true},
                                         InputCase{"TiffLzw", "in.tif[compression=lzw]", 3, false},
                                         InputCase{"WebP", "in.webp[Q=90]", 3, false},
                                         InputCase{"WebPWithAlpha", "in.webp[lossless=true]", 4,
                                                   false}),
                         [](const auto& test) { return test.param.name; });

struct OutputCase {
  const char* file;
  double tolerance;
  int bands;
};

void PrintTo(const OutputCase& output, std::ostream* out) { *out << output.file; }

class ApplyToOutput : public ToolTest, public testing::WithParamInterface<OutputCase> {};

TEST_P(ApplyToOutput, WritesTheFormatOfTheName) {
  const OutputCase& output = GetParam();
  const VImage picture = colourfulPicture(160, 120, 4);
  picture.write_to_file(pathOf("in.png").c_str());

  const ToolResult result = run({"apply", "-l", "heibai", "in.png", output.file});

  ASSERT_EQ(result.exitCode, 0) << result.standardError;
  VImage expected = blackAndWhite(picture);
  if (output.bands == 3) expected = expected.flatten(VImage::option()->set("background", 255));
  EXPECT_LE(greatestDifference(openUpright(pathOf(output.file)), expected), output.tolerance);
}

INSTANTIATE_TEST_SUITE_P(Formats, ApplyToOutput,
                         testing::Values(OutputCase{"out.png", 0, 4}, OutputCase{"out.tif", 0, 4},
                                         OutputCase{"out.webp", 12, 4},
                                         OutputCase{"out.JPG", 6, 3}));

class ApplyTest : public ToolTest {
 protected:
  void writePicture(const std::string& name, int width = 128, int height = 96) const {
    colourfulPicture(width, height).write_to_file(pathOf(name).c_str());
  }
};

TEST_F(ApplyTest, TurnsEveryOrientationUpright) {
  for (int orientation = 1; orientation <= 8; ++orientation) {
    VImage picture = colourfulPicture(140, 100).copy();
    picture.set(VIPS_META_ORIENTATION, orientation);
    picture.set("exif-ifd0-Make", "Lumen (Lumen, ASCII, 6 components, 6 bytes)");
    picture.write_to_file(pathOf("phone.jpg").c_str());
    const VImage phone = VImage::new_from_file(pathOf("phone.jpg").c_str());
    ASSERT_EQ(vips_image_get_orientation(phone.get_image()), orientation);

    const ToolResult result = run({"apply", "-l", "12", "phone.jpg", "upright.tif"});

    ASSERT_EQ(result.exitCode, 0) << result.standardError;
    const VImage upright = VImage::new_from_file(pathOf("upright.tif").c_str());
    EXPECT_EQ(vips_image_get_orientation(upright.get_image()), 1);
    EXPECT_EQ(upright.width(), orientation < 5 ? 140 : 100);
    EXPECT_EQ(greatestDifference(upright, blackAndWhite(openUpright(pathOf("phone.jpg")))), 0)
        << "orientation " << orientation;
  }
}

TEST_F(ApplyTest, ConvertsOtherColourModels) {
  const VImage grey = colourfulPicture(120, 90).colourspace(VIPS_INTERPRETATION_B_W);
  grey.write_to_file(pathOf("grey.jpg").c_str());
  colourfulPicture(120, 90)
      .icc_export(VImage::option()->set("output_profile", "cmyk"))
      .write_to_file(pathOf("print.jpg[Q=100]").c_str());

  ASSERT_EQ(run({"apply", "-l", "heibai", "grey.jpg", "grey.png"}).exitCode, 0);
  ASSERT_EQ(run({"apply", "-l", "heibai", "print.jpg", "print.png"}).exitCode, 0);

  EXPECT_EQ(greatestDifference(openUpright(pathOf("grey.png")), openUpright(pathOf("grey.jpg"))),
            0);
  const VImage print = VImage::new_from_file(pathOf("print.png").c_str());
  EXPECT_EQ(print.bands(), 3);
  // CMYK cannot show every colour, so the mean decides.
  EXPECT_NEAR(print.avg(), blackAndWhite(colourfulPicture(120, 90)).avg(), 12);
}

TEST_F(ApplyTest, StrengthBlendsWithTheOriginal) {
  writePicture("in.png");
  ASSERT_EQ(run({"apply", "-l", "heibai", "-s", "0", "in.png", "half.png"}).exitCode, 0);
  ASSERT_EQ(run({"apply", "-l", "heibai", "-s", "32", "in.png", "full.png"}).exitCode, 0);
  const VImage original = openUpright(pathOf("in.png"));
  const VImage grey = blackAndWhite(original);
  const VImage half = ((original * 8 + grey * 8 + 8) / 16).floor().cast(VIPS_FORMAT_UCHAR);
  EXPECT_EQ(greatestDifference(openUpright(pathOf("half.png")), half), 0);
  EXPECT_EQ(greatestDifference(openUpright(pathOf("full.png")), grey), 0);
}

TEST_F(ApplyTest, EveryPictureOfABatchGetsTheSameStrength) {
  for (const char* name : {"a.png", "b.png", "c.png"}) writePicture(name);
  ASSERT_EQ(
      run({"apply", "-l", "heibai", "-s", "0", "-d", "out", "a.png", "b.png", "c.png"}).exitCode,
      0);
  EXPECT_EQ(readFile("out/a.png"), readFile("out/c.png"));
}

TEST_F(ApplyTest, OneBadFileIsReportedAndTheOthersAreDone) {
  writePicture("a.jpg");
  writePicture("b.png");
  writeFile("broken.jpg", "not a picture", 13);

  const ToolResult result = run({"apply", "-l", "moran", "--out-dir", "out", "--suffix", "_moran",
                                 "a.jpg", "missing.jpg", "broken.jpg", "b.png"});

  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.standardError.find("missing.jpg: there is no such file"), std::string::npos);
  EXPECT_NE(result.standardError.find("broken.jpg: is not a picture"), std::string::npos);
  EXPECT_NE(result.standardError.find("2 of 4 pictures failed"), std::string::npos);
  EXPECT_EQ(listFolder("out"), (std::vector<std::string>{"a_moran.jpg", "b_moran.png"}));
}

TEST_F(ApplyTest, StandardInputAndOutput) {
  writePicture("in.png");
  const ToolResult result = run({"apply", "-l", "heibai", "--to", "png", "-", "-"}, "in.png");
  ASSERT_EQ(result.exitCode, 0) << result.standardError;
  writeFile("out.png", result.standardOutput);
  EXPECT_EQ(greatestDifference(openUpright(pathOf("out.png")),
                               blackAndWhite(openUpright(pathOf("in.png")))),
            0);
}

TEST_F(ApplyTest, OverwritesInPlaceKeepingModeAndLinks) {
  writePicture("real.png");
  ASSERT_EQ(::symlink("real.png", pathOf("link.png").c_str()), 0);
  ASSERT_EQ(::chmod(pathOf("real.png").c_str(), 0640), 0);
  ASSERT_EQ(run({"apply", "-l", "heibai", "real.png", "link.png"}).exitCode, 0);

  struct stat status;
  ASSERT_EQ(::lstat(pathOf("link.png").c_str(), &status), 0);
  EXPECT_TRUE(S_ISLNK(status.st_mode));
  ASSERT_EQ(::stat(pathOf("real.png").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0640u);
  const VImage grey = openUpright(pathOf("real.png"));
  EXPECT_EQ(greatestDifference(grey.extract_band(0), grey.extract_band(2)), 0);
}

TEST_F(ApplyTest, DrawsTheSameSampleSceneEverywhere) {
  ASSERT_EQ(run({"sample", "--size", "320x240", "scene.png"}).exitCode, 0);
  std::size_t bytes = 0;
  void* pixels = openUpright(pathOf("scene.png")).write_to_memory(&bytes);
  // FNV-1a
  std::uint64_t checksum = 14695981039346656037u;
  for (std::size_t i = 0; i < bytes; ++i) {
    checksum = (checksum ^ static_cast<std::uint8_t*>(pixels)[i]) * 1099511628211u;
  }
  g_free(pixels);
  EXPECT_EQ(bytes, 320u * 240 * 3);
  EXPECT_EQ(checksum, 5091528332727522399u);
}

}  // namespace
}  // namespace lumora::test
