// What is read as a picture and what is not: formats, colour models, kinds of files, sizes.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <sstream>

#include "pictures.h"

namespace lumora::test {
namespace {

namespace fs = std::filesystem;
using vips::VImage;

constexpr const char* kNoPicture = "is not a picture in a format that can be read here";

class ReadingTest : public PictureTest {
 protected:
  bool canWrite(const std::string& name, const VImage& picture) const {
    fs::create_directories(fs::path(pathOf(name)).parent_path());
    try {
      writePicture(name, picture);
      return true;
    } catch (const vips::VError&) {
      vips_error_clear();
      fs::remove(pathOf(name));
      return false;
    }
  }
};

TEST_F(ReadingTest, ReadsTheListedFormatsUnderAnyNameAndNoOthers) {
  // What the image library of this machine can write, and whether it may be read.
  const std::map<std::string, bool> formats{
      {"jpg", true},  {"png", true},  {"webp", true}, {"tif", true},   {"gif", true},
      {"avif", true}, {"heic", true}, {"v", false},   {"ppm", false},  {"pgm", false},
      {"pfm", false}, {"jxl", false}, {"jp2", false}, {"fits", false}, {"hdr", false},
      {"csv", false}, {"mat", false}, {"bmp", false}};
  fs::create_directories(pathOf("in"));
  std::string names;
  for (const auto& [suffix, isRead] : formats) {
    const VImage picture = colourfulPicture(120, 100);
    const bool isTable = suffix == "csv" || suffix == "mat" || suffix == "pgm";
    if (canWrite("x." + suffix, isTable ? picture.extract_band(0) : picture)) {
      fs::copy_file(pathOf("x." + suffix), pathOf("in/" + suffix + ".jpg"));
      fs::rename(pathOf("x." + suffix), pathOf("in/" + suffix + "-named"));
      names += " in/" + suffix + "-named in/" + suffix + ".jpg";
    } else {
      ASSERT_FALSE(isRead) << suffix;
    }
  }
  const std::string errors = run("apply -l heibai --to png -d out" + names).error;
  std::istringstream files(names);
  int refused = 0;
  for (std::string file; files >> file;) {
    const std::string name = fs::path(file).filename().string();
    const bool isRead = formats.at(name.substr(0, name.find_first_of(".-")));
    const bool isSaid = errors.find("lumora: " + file + ": " + kNoPicture) != errors.npos;
    EXPECT_NE(isRead, isSaid) << file;
    refused += isSaid ? 1 : 0;
  }
  EXPECT_GE(refused, 12);
  EXPECT_TRUE(says(succeed("apply --help"), "Reads JPEG, PNG, WebP, TIFF, AVIF, HEIC, GIF,"));
}

// Each of these would be given to a renderer or another program by its content or its name.
TEST_F(ReadingTest, NothingThatRunsProgramsOrOpensFurtherFilesIsRead) {
  writePicture("secret.png");
  const std::string svg =
      "<svg xmlns='http://www.w3.org/2000/svg' xmlns:xlink='http://www.w3.org/1999/xlink' "
      "width='100' height='100'><image xlink:href='secret.png' width='100' height='100'/></svg>";
  const std::map<std::string, std::string> contents{
      {"svg", svg},
      {"far.svg", "<?xml version='1.0'?><!--" + std::string(5000, '-') + ">" + svg},
      {"mvg", "push graphic-context\nviewbox 0 0 100 100\nimage over 0,0 0,0 'secret.png'\n"},
      {"msl", "<?xml version='1.0'?><image><read filename='secret.png'/></image>"},
      {"pdf", "%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\ntrailer<</Root 1 0 R>>\n"},
      {"eps", "%!PS-Adobe-3.0 EPSF-3.0\n%%BoundingBox: 0 0 100 100\nshowpage\n"},
      {"psd", std::string("8BPS\0\1\0\0\0\0\0\0\0\3\0\0\0\x64\0\0\0\x64\0\x8\0\3", 26)},
      {"xcf", "gimp xcf file"},
      {"txt", "text:/etc/passwd"},
      {"x@secret", "@secret.png"}};
  shell("mkdir tmp");
  std::string files;
  for (const auto& [name, content] : contents) {
    for (const std::string& file : {name + ".jpg", "own-" + name + "." + name}) {
      writeFile(file, content);
      files += ' ' + file;
    }
  }
  const ToolResult result =
      runShell("TMPDIR=$PWD/tmp lumora apply -l heibai --to png -d out" + files);
  EXPECT_EQ(result.exitCode, 4) << "none was made";
  std::istringstream names(files);
  for (std::string file; names >> file;) {
    EXPECT_TRUE(says(result.error, "lumora: " + file + ": " + kNoPicture));
    fs::remove(pathOf(file));
  }
  for (const char* name : {"'secret.png[page=0]'", "png:secret.png", "@secret.png",
                           "'secret.png[0]'", "file:secret.png", "'secret.png '"}) {
    refuse(1, std::string("apply -l heibai ") + name + " o.png", "there is no such file");
  }
  EXPECT_EQ(listFolder(), (Words{"out", "secret.png", "tmp"}));
  EXPECT_EQ(listFolder("out"), Words{});
  EXPECT_EQ(listFolder("tmp"), Words{});
}

TEST_F(ReadingTest, ANameIsNoMoreThanAName) {
  writePicture("photo.jpg[shrink=2]x.png");
  fs::rename(pathOf("photo.jpg[shrink=2]x.png"), pathOf("photo.jpg[shrink=2]"));
  succeed("apply -l heibai 'photo.jpg[shrink=2]' out.png");
  EXPECT_EQ(stored("out.png").width(), 128);
}

// Every file that can be written with so many bands of such samples, said to be in such a colour
// model, becomes a picture of three or four bands with the right levels, or is refused by its name.
TEST_F(ReadingTest, BandsBecomeThreeOrFourOrARefusal) {
  constexpr VipsInterpretation kModels[] = {
      VIPS_INTERPRETATION_MULTIBAND, VIPS_INTERPRETATION_B_W,    VIPS_INTERPRETATION_sRGB,
      VIPS_INTERPRETATION_RGB16,     VIPS_INTERPRETATION_GREY16, VIPS_INTERPRETATION_CMYK,
      VIPS_INTERPRETATION_LAB,       VIPS_INTERPRETATION_scRGB};
  constexpr VipsBandFormat kSamples[] = {VIPS_FORMAT_UCHAR, VIPS_FORMAT_CHAR,  VIPS_FORMAT_USHORT,
                                         VIPS_FORMAT_SHORT, VIPS_FORMAT_UINT,  VIPS_FORMAT_INT,
                                         VIPS_FORMAT_FLOAT, VIPS_FORMAT_DOUBLE};
  Words files;
  for (int bands = 1; bands <= 6; ++bands) {
    const std::vector<double> levels{20, 60, 100, 140, 180, 220};
    const VImage flat = VImage::black(96, 90, VImage::option()->set("bands", bands)) +
                        std::vector<double>(levels.begin(), levels.begin() + bands);
    for (const VipsBandFormat samples : kSamples) {
      const double scale = samples == VIPS_FORMAT_USHORT ? 257 : 1;
      for (const VipsInterpretation model : kModels) {
        const VImage picture =
            (flat * scale).cast(samples).copy(VImage::option()->set("interpretation", model));
        for (const std::string format : {"tif", "png", "webp", "jpg", "gif"}) {
          // Where bands do not fit the model the other savers read beyond their rows, at which
          // sanitizers end the test.
          if (format != "tif" && (kReduced || samples != VIPS_FORMAT_UCHAR)) continue;
          std::ostringstream name;
          name << format << '/' << bands << '-' << samples << '-' << model << '.' << format;
          if (canWrite("in/" + name.str(), picture)) files.push_back(name.str());
        }
      }
    }
  }
  ASSERT_GE(files.size(), kReduced ? 350u : 400u);
  const std::string errors = run("apply -l heibai -r --to tif -d out in").error;
  int read = 0;
  for (const std::string& file : files) {
    SCOPED_TRACE(file);
    const std::string result = fs::path("out/" + file).replace_extension("tif").string();
    // The other word is of a profile left out.
    const std::string start = "in/" + file + ": ";
    const bool isRefused = errors.find(start) != errors.npos &&
                           errors.find(start + "its colour profile") == errors.npos;
    ASSERT_NE(isRefused, fs::exists(pathOf(result)));
    if (isRefused) continue;
    ++read;
    const VImage expected = blackAndWhite(open("in/" + file));
    EXPECT_TRUE(expected.bands() == 3 || expected.bands() == 4);
    EXPECT_LE(greatestDifference(stored(result), expected), 2);
  }
  EXPECT_GE(read, kReduced ? 70 : 100);
  std::printf("%zu pictures, %d read\n", files.size(), read);
}

// Damage in a file that says what it is: none of it may take the tool down.
TEST_F(ReadingTest, DamagedFilesAreReadOrRefused) {
  fs::create_directories(pathOf("in"));
  for (const std::string format : {"jpg", "png", "webp", "tif", "gif", "avif", "heic"}) {
    writePicture("x." + format);
    const Bytes whole = readFile("x." + format);
    for (std::size_t i = 0; i < 24; ++i) {
      Bytes damaged = whole;
      // The first bytes have the structure; the rest is hit everywhere.
      const std::size_t at = i < 12 ? 16 + 5 * i : (i - 11) * (whole.size() - 1) / 12;
      damaged[at] = static_cast<std::uint8_t>(i % 2 == 0 ? 0xFF : damaged[at] ^ 0x81);
      if (i % 6 == 5) damaged.resize(at + 1);
      writeFile("in/" + format + std::to_string(i) + "." + format, damaged);
    }
  }
  const ToolResult result = run("apply -l heibai -r --to png -d out in");
  const auto refused =
      static_cast<std::size_t>(std::count(result.error.begin(), result.error.end(), '\n') - 1);
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(listFolder("out").size() + refused, 7u * 24);
}

}  // namespace
}  // namespace lumora::test
