// Errors and exit codes as a user meets them, and the listings.
#include <algorithm>
#include <regex>

#include "pictures.h"

namespace lumora::test {
namespace {

class CommandLineTest : public PictureTest {
 protected:
  CommandLineTest() {
    writePicture("in.png");
    writePicture("flat.png", 128, 87);
    shell("head -c -500 in.png > cut.png; touch empty.png");
    shell("mkdir folder bad; head -c 1000 /dev/zero > bad/mixIm.dat");
  }

  void expectRefusals(int exitCode, const Refusals& refusals) const {
    const Words before = listFolder();
    for (const auto& [arguments, said] : refusals) refuse(exitCode, arguments, said);
    EXPECT_EQ(listFolder(), before);
  }
};

TEST_F(CommandLineTest, NamesThePictureAndWhatIsWrongWithIt) {
  expectRefusals(
      1,
      {
          {"apply -l heibai no.jpg o.png", "no.jpg: there is no such file"},
          {"apply -l heibai folder o.png", "folder: is a folder"},
          {"apply -l heibai empty.png o.png", "empty.png: is empty"},
          {"apply -l heibai cut.png o.png", "cut.png: cannot be read, it seems damaged"},
          {"apply -l heibai flat.png o.png",
           "flat.png: is 128 x 87 pixels; looks need 88 to 20000"},
          {"apply -l heibai in.png x/o.png", "x/o.png: cannot be written: there is no folder x"},
          {"apply -l heibai in.png /proc/o.png", "/proc/o.png: cannot"},
          {"apply -l heibai --to png in.png /dev/full", "/dev/full: writing failed: No space left"},
          {"apply -l mosaic --rect 64,64,66,20 in.png o.png",
           "in.png: the rectangle 64,64,66,20 (rect) reaches beyond the picture of 128 x 96"},
          {"apply -l heibai -d /proc/o in.png", "/proc/o: cannot"},
          {"apply -l colour-fix --pick 128,0 in.png o.png",
           "in.png: the point 128,0 (pick) is outside"},
          {"bench no.jpg", "no.jpg: there is no such file"},
          {"frame -l heibai -f nv12 --size 90x90", "standard input: is empty"},
          {"gallery in.png /proc/o.png", ": /proc/o.png"},
      });
}

TEST_F(CommandLineTest, NamesWhatCannotBeMeant) {
  expectRefusals(
      2,
      {
          {"", "Usage: lumora"},
          {"aply", "'aply'; did you mean 'apply'?"},
          {"apply in.png o.png", "no look is named; use --look"},
          {"apply -l Haibei in.png o.png", "'Haibei'; did you mean 'heibai'?"},
          {"apply -l sepia in.png o.png", "lumora looks"},
          {"apply -l 21 in.png o.png", "1..20"},
          {"apply -l heibai --strength 33 in.png o.png", "--strength: 33 is outside 0..32 (0 half"},
          {"apply -l heibai -s -1 in.png o.png", "--strength: -1 is outside 0..32"},
          {"apply -l heibai -s 8x in.png o.png", "--strength: '8x' is not a whole number"},
          {"apply -l heibai --strenght 8", "did you mean '--strength'?"},
          {"apply -l heibai --strength", "option '--strength' needs a value"},
          {"apply -l heibai in.png", "an input and an output picture"},
          {"apply -l heibai in.png in.png o.png", "need --out-dir"},
          {"apply -l heibai in.png folder", "folder: is a folder; use --out-dir"},
          {"apply -l heibai in.png o.xyz", "o.xyz: its name does not say in which format"},
          {"apply -l heibai --rect 0,0,8,8 in.png o.png",
           "--rect belongs to the look mosaic, not heibai"},
          {"apply -l heibai --direction 1 in.png o.png", "belongs to the look lianghong"},
          {"apply -l heibai -r folder o.png", "--recursive needs --out-dir"},
          {"apply -l heibai --force --skip-existing in.png o.png", "contradicts --force"},
          {"apply -l heibai --in-place --skip-existing in.png", "contradicts --in-place"},
          {"apply -l heibai --in-place --to jpg in.png",
           "--in-place keeps folder, name and format"},
          {"apply -l heibai --in-place -d folder in.png", "--in-place keeps folder, name and"},
          {"apply -l heibai --in-place -", "standard input has no name to keep"},
          {"apply -l heibai --in-place --backup '' in.png",
           "--backup: the backup needs another name"},
          {"apply -l heibai --in-place --backup a/b in.png", "--backup: 'a/b'"},
          {"apply -l heibai --backup .orig in.png o.png", "--backup needs --in-place"},
          {"apply -l heibai -j all in.png o.png", "--jobs: 'all' is not"},
          {"apply -l heibai -j 257 in.png o.png", "--jobs: 257 is outside 0..256"},
          {"apply -l heibai -d o --suffix a/b in.png", "--suffix: 'a/b'"},
          {"apply -l heibai -d folder -", "use IN OUT"},
          {"apply -l mosaic --rect 1,0,8,8 in.png o.png",
           "--rect: rect has the number 1, which is odd"},
          {"apply -l colour-fix in.png o.png", "either colour or pick"},
          {"gallery in.png folder", "folder: is a folder"},
          {"sample o.xyz", "o.xyz: its name must end in one of .jpg"},
          {"bench -l colour-fix -f nv21 in.png", "colour-fix exists for rgba frames only"},
          {"looks tilt", "'tilt'"},
          {"frame -l heibai -f nv21 --size 131x90", "even sides, not 131 x 90"},
          {"frame -l heibai -f rgba --size 80x90", "is 80 x 90 pixels; looks need 88 to 20000"},
          {"frame -l heibai -f rgba --size 90x90 --stride 359",
           "--stride 359 is less than the 360"},
          {"frame -l moran --size 90x90", "--size and --stride need --format"},
      });
}

TEST_F(CommandLineTest, NamesTheResourceFile) {
  shell("truncate -s 17M long.xml");
  expectRefusals(
      3, {
             {"apply -l heibai --resources folder in.png o.png", "folder/mixIm.dat: there is no"},
             {"apply -l heibai --resources bad in.png o.png",
              "bad/mixIm.dat: is not a usable texture pack: has 1000 bytes instead of 11535852"},
             {"apply -l heibai --params no.xml in.png o.png", "no.xml: there is no such file"},
             {"apply -l heibai --params long.xml in.png o.png",
              "long.xml: is longer than the 16 MiB that are read"},
             {"tune --check long.xml", "long.xml: is longer than the 16 MiB that are read"},
             {"apply -l heibai --params empty.png in.png o.png", "empty.png: discarded"},
             {"frame -l heibai -f rgba --size 90x90 --params in.png",
              "in.png: has no element /Config"},
         });
}

TEST_F(CommandLineTest, NamesTheProcessorWhereItLacksInstructions) {
#if defined(__x86_64__) && !defined(LUMORA_REDUCED_TESTS)
  if (runShell("command -v qemu-x86_64").exitCode != 0) GTEST_SKIP() << "no emulator";
  const std::string old = "qemu-x86_64 -cpu qemu64,-ssse3 $(command -v lumora) ";
  EXPECT_TRUE(says(runShell(old + "apply -l heibai in.png o.png").error,
                   "could not be set up: this processor lacks instructions"));
#else
  GTEST_SKIP() << "needs an optimised build for x86-64";
#endif
}

TEST_F(CommandLineTest, ResourceFoldersMayHaveLongNamesAndTuningComeFromElsewhere) {
  const std::string folder = std::string(200, 'a') + "/" + std::string(200, 'b');
  shell("mkdir -p " + folder + "; ln -s '" LUMORA_BUILD_DIRECTORY "/mixIm.dat' " + folder);
  succeed("tune --default own.xml");
  succeed("apply -l heibai in.png o.png --resources " + folder);
  succeed("apply -l heibai in.png p.png --params own.xml");
}

TEST_F(CommandLineTest, ListsAllLooksWithTheOptionsTheyTake) {
  const std::string table = succeed("looks"), json = succeed("looks --json");
  const std::regex entry("\"(name|option)\": \"([^\"]+)\"");
  std::string look, options;
  int looks = 0;
  for (std::sregex_iterator it(json.begin(), json.end(), entry), end; it != end; ++it) {
    const std::string name = it->str(2);
    if (it->str(1) == "name") {
      look = name;
      ++looks;
      EXPECT_TRUE(says(table, ' ' + look + ' '));
      EXPECT_TRUE(says(succeed("looks " + look), look + ": "));
    } else {
      options += name + '\n';
      // It is taken with its own look: what apply says of it is about the value.
      const std::string error = run("apply -l " + look + ' ' + name + " '' in.png o.png").error;
      EXPECT_FALSE(says(error, "belongs to")) << name;
    }
  }
  EXPECT_EQ(looks, 20);
  EXPECT_EQ(options,
            succeed("apply --help | sed -n '/^Settings of/,/^$/s/^ *\\(--[a-z]*\\).*/\\1/p'"));
  EXPECT_EQ(std::count(options.begin(), options.end(), '\n'), 11);
}

}  // namespace
}  // namespace lumora::test
