// Errors and exit codes as a user meets them, and the listings.
#include <gtest/gtest.h>

#include <filesystem>
#include <ostream>

#include "pictures.h"
#include "tool_runner.h"

namespace lumora::test {
namespace {

struct ErrorCase {
  const char* name;
  std::vector<std::string> arguments;
  int exitCode;
  std::vector<std::string> said;  // all of it stands in the message
};

void PrintTo(const ErrorCase& fault, std::ostream* out) { *out << fault.name; }

class CommandLineTest : public ToolTest {
 protected:
  CommandLineTest() {
    colourfulPicture(128, 96).write_to_file(pathOf("in.png").c_str());
    colourfulPicture(128, 87).write_to_file(pathOf("flat.png").c_str());
    const Bytes whole = readFile("in.png");
    writeFile("cut.png", Bytes(whole.begin(), whole.begin() + static_cast<long>(whole.size() / 2)));
    writeFile("empty.png", Bytes());
    std::filesystem::create_directories(pathOf("folder"));
    std::filesystem::create_directories(pathOf("bad"));
    writeFile("bad/mixIm.dat", Bytes(1000));
  }
};

class Refusal : public CommandLineTest, public testing::WithParamInterface<ErrorCase> {};

TEST_P(Refusal, NamesTheFaultAndWritesNothing) {
  const ErrorCase& fault = GetParam();
  const std::vector<std::string> before = listFolder();
  const ToolResult result = run(fault.arguments);
  EXPECT_EQ(result.exitCode, fault.exitCode);
  EXPECT_EQ(result.outputText(), "");
  for (const std::string& words : fault.said) {
    EXPECT_NE(result.standardError.find(words), std::string::npos)
        << "'" << words << "' is not in: " << result.standardError;
  }
  EXPECT_EQ(result.standardError.find("status"), std::string::npos) << result.standardError;
  EXPECT_EQ(listFolder(), before);
}

std::vector<std::string> apply(std::vector<std::string> more) {
  more.insert(more.begin(), {"apply", "--look", "heibai"});
  return more;
}

std::vector<std::string> frame(std::vector<std::string> more) {
  more.insert(more.begin(), {"frame", "--look", "heibai", "--format"});
  return more;
}

INSTANTIATE_TEST_SUITE_P(
    Pictures, Refusal,
    testing::Values(
        ErrorCase{"Missing", apply({"no.jpg", "o.png"}), 1, {"no.jpg", "there is no such file"}},
        ErrorCase{"FolderIn", apply({"folder", "o.png"}), 1, {"folder", "is a folder"}},
        ErrorCase{"Empty", apply({"empty.png", "o.png"}), 1, {"empty.png", "is empty"}},
        ErrorCase{"Truncated", apply({"cut.png", "o.png"}), 1, {"cut.png", "damaged"}},
        ErrorCase{
            "TooSmall", apply({"flat.png", "o.png"}), 1, {"flat.png", "128 x 87", "88 to 20000"}},
        ErrorCase{"FolderOut", apply({"in.png", "folder"}), 2, {"folder", "--out-dir"}},
        ErrorCase{
            "NoSuchFolder", apply({"in.png", "x/o.png"}), 1, {"x/o.png", "there is no folder"}},
        ErrorCase{"Unwritable", apply({"in.png", "/proc/o.png"}), 1, {"/proc/o.png"}},
        ErrorCase{"FullDisk",
                  apply({"--to", "png", "in.png", "/dev/full"}),
                  1,
                  {"/dev/full", "No space left"}},
        ErrorCase{"UnknownFormat", apply({"in.png", "o.xyz"}), 2, {"o.xyz", ".jpg", "--to"}},
        ErrorCase{"RectangleOutside",
                  {"apply", "-l", "mosaic", "--rect", "64,64,66,20", "in.png", "o.png"},
                  1,
                  {"in.png", "64,64,66,20", "128 x 96"}},
        ErrorCase{"OutDirUnwritable", apply({"-d", "/proc/o", "in.png"}), 1, {"/proc/o: cannot"}},
        ErrorCase{"BenchMissing", {"bench", "no.jpg"}, 1, {"no.jpg: there is no such file"}},
        ErrorCase{"GalleryUnwritable", {"gallery", "in.png", "/proc/o.png"}, 1, {": /proc/o.png"}},
        ErrorCase{"PickOutside",
                  {"apply", "-l", "colour-fix", "--pick", "128,0", "in.png", "o.png"},
                  1,
                  {"128,0", "outside"}}),
    [](const auto& test) { return test.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Usage, Refusal,
    testing::Values(
        ErrorCase{"Nothing", {}, 2, {"Usage: lumora"}},
        ErrorCase{"UnknownCommand", {"aply"}, 2, {"aply", "did you mean 'apply'?"}},
        ErrorCase{"NoLook", {"apply", "in.png", "o.png"}, 2, {"--look"}},
        ErrorCase{"UnknownLook",
                  {"apply", "-l", "Haibei", "in.png", "o.png"},
                  2,
                  {"Haibei", "did you mean 'heibai'?"}},
        ErrorCase{"StrangeLook", {"apply", "-l", "sepia", "in.png", "o.png"}, 2, {"lumora looks"}},
        ErrorCase{"Mode21", {"apply", "-l", "21", "in.png", "o.png"}, 2, {"21", "1..20"}},
        ErrorCase{"Strength33",
                  apply({"--strength", "33", "in.png", "o.png"}),
                  2,
                  {"--strength", "33", "0..32", "half effect"}},
        ErrorCase{"StrengthNegative", apply({"-s", "-1", "in.png", "o.png"}), 2, {"-1", "0..32"}},
        ErrorCase{"StrengthWord", apply({"-s", "8x", "in.png", "o.png"}), 2, {"'8x'", "number"}},
        ErrorCase{"UnknownOption", apply({"--strenght", "8"}), 2, {"did you mean '--strength'?"}},
        ErrorCase{"NoValue", apply({"--strength"}), 2, {"--strength", "needs a value"}},
        ErrorCase{"OneOperand", apply({"in.png"}), 2, {"input and an output"}},
        ErrorCase{"ThreeOperands", apply({"in.png", "in.png", "o.png"}), 2, {"--out-dir"}},
        ErrorCase{"OptionOfAnotherLook",
                  apply({"--rect", "0,0,8,8", "in.png", "o.png"}),
                  2,
                  {"--rect", "mosaic", "heibai"}},
        ErrorCase{"DirectionOfAnotherLook",
                  apply({"--direction", "1", "in.png", "o.png"}),
                  2,
                  {"--direction", "lianghong"}},
        ErrorCase{"RecursiveWithoutFolder", apply({"-r", "folder", "o.png"}), 2, {"--out-dir"}},
        ErrorCase{"JobsWord", apply({"-j", "all", "in.png", "o.png"}), 2, {"--jobs", "'all'"}},
        ErrorCase{"ManyJobs", apply({"-j", "257", "in.png", "o.png"}), 2, {"--jobs", "0..256"}},
        ErrorCase{"SuffixPath", apply({"-d", "o", "--suffix", "a/b", "in.png"}), 2, {"'a/b'"}},
        ErrorCase{"StandardInputIntoFolder", apply({"-d", "folder", "-"}), 2, {"IN OUT"}},
        ErrorCase{"GalleryIntoFolder", {"gallery", "in.png", "folder"}, 2, {"folder: is a folder"}},
        ErrorCase{"SampleSuffix", {"sample", "o.xyz"}, 2, {"o.xyz", ".jpg"}},
        ErrorCase{"BenchFormat",
                  {"bench", "-l", "colour-fix", "-f", "nv21", "in.png"},
                  2,
                  {"colour-fix", "rgba"}},
        ErrorCase{"LooksUnknown", {"looks", "tilt"}, 2, {"'tilt'"}},
        ErrorCase{"OddRectangle",
                  {"apply", "-l", "mosaic", "--rect", "1,0,8,8", "in.png", "o.png"},
                  2,
                  {"--rect", "odd"}},
        ErrorCase{"NoColour", {"apply", "-l", "colour-fix", "in.png", "o.png"}, 2, {"--pick X,Y"}},
        ErrorCase{"OddFrame", frame({"nv21", "--size", "131x90"}), 2, {"even", "131 x 90"}},
        ErrorCase{"SmallFrame", frame({"rgba", "--size", "80x90"}), 2, {"80 x 90", "88 to 20000"}},
        ErrorCase{"ShortStride",
                  frame({"rgba", "--size", "90x90", "--stride", "359"}),
                  2,
                  {"359", "360"}},
        ErrorCase{"NoFormat", {"frame", "-l", "moran", "--size", "90x90"}, 2, {"--format"}},
        ErrorCase{"EmptyPipe", frame({"nv12", "--size", "90x90"}), 1, {"standard input", "empty"}}),
    [](const auto& test) { return test.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Resources, Refusal,
    testing::Values(ErrorCase{"NoPack",
                              apply({"--resources", "folder", "in.png", "o.png"}),
                              3,
                              {"folder/mixIm.dat", "--resources"}},
                    ErrorCase{"ShortPack",
                              apply({"--resources", "bad", "in.png", "o.png"}),
                              3,
                              {"bad/mixIm.dat", "1000 bytes instead of 11535852"}},
                    ErrorCase{"NoTuning",
                              apply({"--params", "no.xml", "in.png", "o.png"}),
                              3,
                              {"no.xml", "there is no such file"}}),
    [](const auto& test) { return test.param.name; });

TEST_F(CommandLineTest, ResourceFoldersMayHaveLongNamesAndTuningComeFromElsewhere) {
  const std::string folder = std::string(200, 'a') + "/" + std::string(200, 'b');
  std::filesystem::create_directories(pathOf(folder));
  std::filesystem::create_symlink(LUMORA_BUILD_DIRECTORY "/mixIm.dat",
                                  pathOf(folder + "/mixIm.dat"));
  writeFile("own.xml", "<Config></Config>", 17);
  for (const std::vector<std::string>& more :
       {std::vector<std::string>{"--resources", folder}, {"--params", "own.xml"}}) {
    std::vector<std::string> arguments = apply({"in.png", "o.png"});
    arguments.insert(arguments.end(), more.begin(), more.end());
    const ToolResult result = run(arguments);
    EXPECT_EQ(result.exitCode, 0) << result.standardError;
  }
}

TEST_F(CommandLineTest, ListsAllLooksWithTheOptionsTheyTake) {
  const std::string table = run({"looks"}).outputText();
  const std::string json = run({"looks", "--json"}).outputText();
  for (const char* name : {"moran", "heibai", "mosaic", "colour-fix", "tilt-shift"}) {
    EXPECT_NE(table.find(name), std::string::npos);
    EXPECT_NE(json.find("\"name\": \"" + std::string(name) + "\""), std::string::npos);
    const std::string one = run({"looks", name}).outputText();
    EXPECT_NE(one.find(std::string(name) + ": "), std::string::npos) << one;
  }
  const auto count = [&json](const char* word) {
    std::size_t found = 0;
    for (std::size_t at = 0; (at = json.find(word, at)) != json.npos; ++at) ++found;
    return found;
  };
  EXPECT_EQ(count("\"mode\": "), 20u);
  // Every listed option is taken with its own look: what apply says of it is about the value.
  const ToolResult help = run({"apply", "--help"});
  const std::string text = help.outputText();
  const std::string group = text.substr(text.find("Settings of single looks"));
  std::size_t options = 0;
  for (std::size_t at = 0, end = group.find("\n\n"); (at = group.find("\n      --", at)) < end;
       ++at) {
    const std::string option = group.substr(at + 7, group.find(' ', at + 7) - at - 7);
    const std::size_t listed = json.find("{\"option\": \"" + option + "\"");
    ASSERT_NE(listed, json.npos) << option;
    const std::size_t name = json.rfind("\"name\": \"", listed) + 9;
    const std::string look = json.substr(name, json.find('"', name) - name);
    const ToolResult refused = run({"apply", "-l", look, option, "", "in.png", "o.png"});
    EXPECT_EQ(refused.standardError.find("belongs to"), std::string::npos) << option;
    ++options;
  }
  EXPECT_EQ(options, 11u);
  EXPECT_EQ(count("\"option\": "), options);
}

}  // namespace
}  // namespace lumora::test
