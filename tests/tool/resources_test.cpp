// lumora pack, tune and gallery: the files behind the looks, and the sheet that shows them.
#include <algorithm>
#include <filesystem>

#include "config/filter_params.h"
#include "config/tuning_blocks.h"
#include "pictures.h"
#include "resources/texture_pack.h"

namespace lumora::test {
namespace {

namespace fs = std::filesystem;
using vips::VImage;

class ResourceCommands : public PictureTest {
 protected:
  ResourceCommands() {
    fs::create_symlink(LUMORA_BUILD_DIRECTORY "/mixIm.dat", pathOf("built.dat"));
  }
};

// Pictures of any size replace single textures; every other byte is that of the build's own pack.
TEST_F(ResourceCommands, PackCreateTakesTheUsersPictures) {
  writePicture("wide.png", 300, 50);
  writePicture("tiny.png", (VImage::black(3, 2) + 200).cast(VIPS_FORMAT_UCHAR));
  succeed("pack create --out mixIm.dat --slot leak2=wide.png --slot speck=tiny.png");
  succeed("pack check mixIm.dat");
  Bytes pack = readFile("mixIm.dat");
  const Bytes built = readFile("built.dat");
  ASSERT_EQ(pack.size(), built.size());
  EXPECT_EQ(pack[kPackImages[kSlotSpeck].offset + 100], 200);
  for (const PackImage& slot : {kPackImages[kSlotLeak2], kPackImages[kSlotSpeck]}) {
    const auto begin = built.begin() + slot.offset, end = begin + slot.bytes();
    EXPECT_FALSE(std::equal(begin, end, pack.begin() + slot.offset)) << slot.name;
    std::copy(begin, end, pack.begin() + slot.offset);
  }
  EXPECT_EQ(pack, built);
}

// A pack grows step by step, in folders that are made, and textures go back in unchanged.
TEST_F(ResourceCommands, PackCreateStartsFromAnotherPack) {
  writePicture("wide.png", 300, 50);
  succeed("pack create --out a/mixIm.dat --slot leak2=wide.png");
  succeed("pack extract a/mixIm.dat a/textures");
  succeed("pack create --from a/mixIm.dat --out b/c/mixIm.dat --slot leak2=a/textures/leak2.png");
  EXPECT_EQ(readFile("b/c/mixIm.dat"), readFile("a/mixIm.dat"));
  EXPECT_NE(readFile("b/c/mixIm.dat"), readFile("built.dat"));
  refuse(1, "pack create --force --from a/mixIm.dat --out a/mixIm.dat", "a/mixIm.dat");
  refuse(3, "pack create --from wide.png --out d.dat", "wide.png: has ");
}

TEST_F(ResourceCommands, PackCheckNamesTheFirstFault) {
  Bytes pack = readFile("built.dat");
  pack[11] = 5;
  writeFile("mark.dat", pack);
  pack[0] = 9;
  writeFile("two-faults.dat", pack);
  pack.pop_back();
  writeFile("short.dat", pack);
  refuse(3, "pack check mark.dat", "mark.dat: lacks the mark 01 04 01 01 00 04 at byte 10");
  refuse(3, "pack check two-faults.dat", "does not begin with the bytes 04 00 04 00");
  refuse(3, "pack check short.dat", "has 11535851 bytes instead of 11535852");
  refuse(3, "pack check none.dat", "there is no such file");
  refuse(3, "pack check .", "is not a regular file");
  refuse(2, "pack create --out x.dat --slot vignete=a.png", "did you mean 'vignette'?");
}

TEST_F(ResourceCommands, PackShowAndExtractDrawEveryTexture) {
  succeed("pack show built.dat sheet.png");
  EXPECT_GT(open("sheet.png").width(), 5 * 256);
  fs::create_directories(pathOf("out"));
  succeed("pack extract built.dat out");
  EXPECT_EQ(listFolder("out").size(), std::size(kPackImages));
  EXPECT_EQ(open("out/blotch.png").width(), 48);
}

// The default document holds every look's built-in values: with it and without it pictures are
// equal at every strength, and the installed copy is the same document.
TEST_F(ResourceCommands, TheDefaultTuningChangesNoPicture) {
  succeed("tune --default default.xml");
  shell("lumora tune --default | cmp - default.xml");
  shell("cmp default.xml '" LUMORA_SOURCE_DIRECTORY "/packaging/filter.xml'");
  writePicture("in.png");
  for (const TuningBlock& block : kTuningBlocks) {
    const ModeFacts& mode = modeOf(block);
    if (mode.number == LUMORA_MODE_LAODIANYING) continue;  // its marks lie elsewhere every time
    for (const char* strength : {"7", "16", "25", "32"}) {
      const std::string apply =
          "apply --force -l " + std::to_string(mode.number) + " -s " + strength + " in.png ";
      succeed(apply + "plain.png");
      succeed(apply + "tuned.png --params default.xml");
      EXPECT_EQ(readFile("plain.png"), readFile("tuned.png")) << mode.name << " at " << strength;
    }
  }
}

TEST_F(ResourceCommands, TuneCheckSaysWhatBecomesOfEveryBlock) {
  const std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>" + std::string(200, ' ') +
                           "<Config><filterM><param1>1 2 3</param1></filterM></Config>";
  writeFile("mine.xml", text);
  const std::string report = succeed("tune --check mine.xml");
  EXPECT_EQ(std::count(report.begin(), report.end(), '\n'), 1 + kTuningBlockCount);
  for (const char* line :
       {"mine.xml: read\n", "\n  filterA  moran           missing key /Config/filterA/param1\n",
        "\n  filterE  laodianying     in use\n",
        "\n  filterM  lofi            too few numbers: /Config/filterM/param1 holds 3 of 17\n"}) {
    EXPECT_TRUE(says(report, line));
  }
  writeFile("broken.xml", text.substr(0, 60));
  refuse(3, "tune --check broken.xml", "; every look would have its built-in values");
}

TEST_F(ResourceCommands, GalleryDrawsOneCellPerLookAndStrength) {
  writePicture("in.jpg", 360, 270);
  succeed("gallery in.jpg all.png");
  succeed("gallery --looks heibai,7 --strengths 4,16,32 in.jpg few.png");
  const VImage all = open("all.png"), few = open("few.png");
  EXPECT_EQ(all.width(), 5 * 360 + 6 * 12);
  EXPECT_EQ(few.width(), 3 * 360 + 4 * 12);
  EXPECT_EQ(all.height() - 12, 2 * (few.height() - 12));
  // The second cell shows black and white at full strength.
  writePicture("cell.png", few.crop(12 + 360 + 12, 12, 360, 270));
  expectBlackAndWhite("cell.png", "in.jpg");
  refuse(2, "gallery --looks heibay in.jpg x.png", "did you mean 'heibai'?");

  // The first cell is the picture itself. Letters that reach below the line lift no label.
  succeed("gallery --original --looks fugu,lofi,original in.jpg with.png");
  const VImage with = open("with.png");
  EXPECT_EQ(2 * (with.height() - 12), few.height() - 12);
  for (const int column : {0, 3}) {
    EXPECT_EQ(greatestDifference(with.crop(12 + 372 * column, 12, 360, 270), open("in.jpg")), 0);
  }
  const auto inkTop = [&](int column) {
    const VImage label = with.crop(12 + 372 * column, 12 + 270, 360, 34).extract_band(0);
    int top = 0, width = 0, height = 0;
    label.find_trim(&top, &width, &height,
                    VImage::option()->set("background", 24.0)->set("threshold", 60.0));
    return top;
  };
  EXPECT_EQ(inkTop(1), inkTop(2));
}

}  // namespace
}  // namespace lumora::test
