// lumora pack, tune and gallery: the files behind the looks, and the sheet that shows them.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "config/filter_params.h"
#include "config/tuning_blocks.h"
#include "pictures.h"
#include "resources/texture_pack.h"
#include "tool_runner.h"

namespace lumora::test {
namespace {

using vips::VImage;

class ResourceCommands : public ToolTest {
 protected:
  Bytes createPack(const std::vector<std::string>& more = {}) {
    std::vector<std::string> arguments{"pack", "create", "--out", "mixIm.dat"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const ToolResult result = run(arguments);
    EXPECT_EQ(result.exitCode, 0) << result.standardError;
    return readFile("mixIm.dat");
  }
};

TEST_F(ResourceCommands, PackCreateWritesThePackOfTheBuild) {
  std::ifstream built(LUMORA_BUILD_DIRECTORY "/mixIm.dat", std::ios::binary);
  const Bytes expected{std::istreambuf_iterator<char>(built), {}};
  EXPECT_EQ(createPack(), expected);
  EXPECT_EQ(run({"pack", "check", "mixIm.dat"}).exitCode, 0);
}

// Pictures of any size replace single textures; every other byte stays.
TEST_F(ResourceCommands, PackCreateTakesTheUsersPictures) {
  const Bytes standard = createPack();
  colourfulPicture(300, 50).write_to_file(pathOf("wide.png").c_str());
  (VImage::black(3, 2) + 200).cast(VIPS_FORMAT_UCHAR).write_to_file(pathOf("tiny.png").c_str());
  const Bytes changed = createPack({"--slot", "leak2=wide.png", "--slot", "speck=tiny.png"});
  ASSERT_EQ(changed.size(), standard.size());
  for (const PackImage& slot : kPackImages) {
    const auto begin = changed.begin() + slot.offset, end = begin + slot.bytes();
    const bool isReplaced = &slot == &kPackImages[kSlotLeak2] || &slot == &kPackImages[kSlotSpeck];
    EXPECT_EQ(std::equal(begin, end, standard.begin() + slot.offset), !isReplaced) << slot.name;
  }
  EXPECT_EQ(changed[kPackImages[kSlotSpeck].offset + 100], 200);
}

TEST_F(ResourceCommands, PackCheckNamesTheFirstFault) {
  Bytes pack = createPack();
  pack[11] = 5;
  pack[0] = 9;
  writeFile("two-faults.dat", pack);
  pack.pop_back();
  writeFile("short.dat", pack);
  const std::pair<const char*, const char*> cases[] = {
      {"two-faults.dat", "does not begin with the bytes 04 00 04 00"},
      {"short.dat", "has 11535851 bytes instead of 11535852"},
      {"none.dat", "there is no such file"},
      {".", "is not a regular file"}};
  for (const auto& [file, complaint] : cases) {
    const ToolResult result = run({"pack", "check", file});
    EXPECT_EQ(result.exitCode, 3) << file;
    EXPECT_NE(result.standardError.find(complaint), std::string::npos) << result.standardError;
  }
  EXPECT_EQ(run({"pack", "create", "--out", "x.dat", "--slot", "vignete=a.png"}).exitCode, 2);
}

TEST_F(ResourceCommands, PackShowAndExtractDrawEveryTexture) {
  createPack();
  ASSERT_EQ(run({"pack", "show", "mixIm.dat", "sheet.png"}).exitCode, 0);
  EXPECT_GT(openUpright(pathOf("sheet.png")).width(), 5 * 256);
  ASSERT_EQ(runShell("mkdir out && $LUMORA pack extract mixIm.dat out").exitCode, 0);
  EXPECT_EQ(listFolder("out").size(), std::size(kPackImages));
  EXPECT_EQ(openUpright(pathOf("out/blotch.png")).width(), 48);
}

// The default document holds every look's built-in values: with it and without it pictures are
// equal at every strength, and the installed copy is the same document.
TEST_F(ResourceCommands, TheDefaultTuningChangesNoPicture) {
  ASSERT_EQ(run({"tune", "--default", "default.xml"}).exitCode, 0);
  std::ifstream shipped(LUMORA_SOURCE_DIRECTORY "/packaging/filter.xml", std::ios::binary);
  EXPECT_EQ(readFile("default.xml"), (Bytes{std::istreambuf_iterator<char>(shipped), {}}));

  colourfulPicture(120, 96).write_to_file(pathOf("in.png").c_str());
  for (const TuningBlock& block : kTuningBlocks) {
    if (block.mode == LUMORA_MODE_LAODIANYING) continue;  // its marks lie elsewhere every time
    for (const char* strength : {"7", "16", "25", "32"}) {
      const std::vector<std::string> apply{"apply",      "--look", std::to_string(block.mode),
                                           "--strength", strength, "in.png"};
      auto plain = apply, tuned = apply;
      plain.push_back("plain.png");
      tuned.insert(tuned.end(), {"tuned.png", "--params", "default.xml"});
      ASSERT_EQ(run(plain).exitCode, 0);
      ASSERT_EQ(run(tuned).exitCode, 0);
      EXPECT_EQ(readFile("plain.png"), readFile("tuned.png")) << block.look << " at " << strength;
    }
  }
}

TEST_F(ResourceCommands, TuneCheckSaysWhyABlockIsNotInUse) {
  const std::string text =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?><Config><filterA><param1>1 2 3</param1></filterA>"
      "<filterM><param1>0 9 8 20 30 40 50 60 70 80 90 100 110 120 130 140 150</param1></filterM>"
      "<filterE><param4>19</param4></filterE>" +
      std::string(200, ' ') + "</Config>";
  writeFile("mine.xml", text.data(), text.size());
  const ToolResult result = run({"tune", "--check", "mine.xml"});
  EXPECT_EQ(result.exitCode, 0);
  for (const char* line : {"too few numbers: /Config/filterA/param1 holds 3 of 17",
                           "falling curve: knot 2 of /Config/filterM/param1 is below knot 1",
                           "missing key /Config/filterB/param1", "scalar out of range"}) {
    EXPECT_NE(result.outputText().find(line), std::string::npos) << line << "\n"
                                                                 << result.outputText();
  }
  writeFile("broken.xml", (text + "&bad;").data(), 60);
  EXPECT_EQ(run({"tune", "--check", "broken.xml"}).exitCode, 3);
}

TEST_F(ResourceCommands, GalleryDrawsOneCellPerLookAndStrength) {
  colourfulPicture(360, 270).write_to_file(pathOf("in.jpg").c_str());
  ASSERT_EQ(run({"gallery", "in.jpg", "all.png"}).exitCode, 0);
  ASSERT_EQ(run({"gallery", "--looks", "heibai,7", "--strengths", "4,16,32", "in.jpg", "few.png"})
                .exitCode,
            0);
  const VImage all = openUpright(pathOf("all.png")), few = openUpright(pathOf("few.png"));
  EXPECT_EQ(all.width(), 5 * 360 + 6 * 12);
  EXPECT_EQ(few.width(), 3 * 360 + 4 * 12);
  EXPECT_EQ(all.height() - 12, 2 * (few.height() - 12));
  // The second cell shows black and white at full strength.
  const VImage cell = few.crop(12 + 360 + 12, 12, 360, 270);
  const VImage grey = blackAndWhite(openUpright(pathOf("in.jpg")));
  EXPECT_EQ(greatestDifference(cell, grey), 0);
  EXPECT_EQ(run({"gallery", "--looks", "heibay", "in.jpg", "x.png"}).exitCode, 2);
}

}  // namespace
}  // namespace lumora::test
