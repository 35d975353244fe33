// lumora lut and apply --lut.
#include "modes/modes.h"
#include "pictures.h"

namespace lumora::test {
namespace {

using LutTest = PictureTest;

TEST_F(LutTest, ALookAsATableIsTheLook) {
  writePicture("photo.png", 200, 150);
  succeed("apply --look fugu --strength 24 photo.png look.png");
  for (const std::string table :
       {"--size 65 t.cube", "--to hald t.png", "--to hald --size 16 t.png"}) {
    succeed("lut --strength 24 --force --look fugu " + table);
    succeed("apply --force --lut " + table.substr(table.rfind(' ')) + " photo.png table.png");
    EXPECT_LE(greatestDifference(open("look.png"), open("table.png")), 2) << table;
  }
}

TEST_F(LutTest, AllLooksThatAreFunctionsOfColour) {
  succeed("lut --all tables --size 5");
  EXPECT_EQ(listFolder("tables"),
            (Words{"fugu.cube", "heibai.cube", "moran.cube", "nuanyangyang.cube", "rixi.cube",
                   "sheet.jpg", "tianmeikeren.cube", "valencia.cube"}));
  refuse(1, "lut --all tables", "exists");
  int refused = 0;
  for (const ModeFacts& mode : kModes) {
    const ToolResult result =
        run(std::string("lut --look ") + mode.name + " " + mode.name + ".cube");
    if (result.exitCode == 0) continue;
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_TRUE(says(result.error, "cannot be a table of colours: it"));
    ++refused;
  }
  EXPECT_EQ(refused, 13);
}

TEST_F(LutTest, StrengthMixesATableOfOthers) {
  writeFile("white.cube", "LUT_1D_SIZE 2\n1 1 1\n1 1 1\n");
  writePicture("small.png", 88, 90);
  succeed("apply --lut white.cube small.png white.png");
  EXPECT_EQ(open("white.png").min(), 255);
  succeed("apply --lut white.cube --strength 0 small.png half.png");
  const vips::VImage expected = ((open("small.png") + 255) / 2 + 0.5).cast(VIPS_FORMAT_UCHAR);
  EXPECT_LE(greatestDifference(open("half.png"), expected), 1);
}

TEST_F(LutTest, Refusals) {
  writePicture("photo.png", 100, 100);
  writeFile("bad.cube", "LUT_3D_SIZE 2\n0 0 0\n0 zero 0\n");
  writeFile("empty.cube", "");
  const Refusals cases = {
      {"apply --lut bad.cube photo.png out.png", "bad.cube: line 3: 'zero' is not a number"},
      {"apply --lut empty.cube photo.png out.png", "empty.cube: is empty"},
      {"apply --lut none.cube photo.png out.png", "none.cube"},
      {"apply --lut photo.png photo.png out.png", "photo.png: is no Hald picture: 100 x 100"},
  };
  for (const auto& [arguments, said] : cases) refuse(1, arguments, said);
  const Refusals usage = {
      {"apply --lut bad.cube --look fugu photo.png out.png", "--lut takes the place of --look"},
      {"lut out.cube", "either --look or --all is needed"},
      {"lut --look fugu --all d", "either --look or --all is needed"},
      {"lut --look fugu", "one output is needed"},
      {"lut --look fugu --size 1 out.cube", "1"},
      {"lut --look fugu --size 17 out.png", "is its level, 2..16"},
      {"lut --look fugu --to tiles --size 8 out.png", "whose size is fixed"},
      {"lut --look fugu --to cube out.png", "a name in .cube or .png"},
      {"lut --look fugu out.jpg", "a name in .cube or .png"},
      {"lut --look mosaic out.cube", "it works on a part of the picture"},
  };
  for (const auto& [arguments, said] : usage) refuse(2, arguments, said);
  EXPECT_EQ(listFolder(), (Words{"bad.cube", "empty.cube", "photo.png"}));
}

}  // namespace
}  // namespace lumora::test
