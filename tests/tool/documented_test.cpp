// What the tool says about itself holds: help, manual page, completions, documented commands.
#include <regex>
#include <sstream>

#include "pictures.h"

namespace lumora::test {
namespace {

class DocumentedTest : public PictureTest {
 protected:
  // Of the tool and of pack: the first words of the lines that say what they do.
  Words allCommands() const {
    std::istringstream lines(succeed("--help | sed -n 's/^  \\([a-z]*\\)  .*/\\1/p'") +
                             succeed("pack --help | sed -n 's/^  \\([a-z]*\\)  .*/pack \\1/p'"));
    Words commands;
    for (std::string line; std::getline(lines, line);) commands.push_back(line);
    return commands;
  }
};

TEST_F(DocumentedTest, EveryCommandExplainsItselfWithExamples) {
  EXPECT_TRUE(says(succeed("--help"), "Exit codes: 0 all done, 1 a picture failed"));
  EXPECT_TRUE(succeed("--version").starts_with("lumora "));
  const Words commands = allCommands();
  EXPECT_EQ(commands.size(), 9u + 4u);
  for (const std::string& command : commands) {
    const std::string help = succeed(command + " --help");
    EXPECT_TRUE(help.starts_with("Usage: lumora " + command)) << help;
    EXPECT_TRUE(says(help, "\nExamples:\n  lumora "));
  }
}

TEST_F(DocumentedTest, TheManualPageHasEveryCommandAndOption) {
  const std::string page = shell("bash '" LUMORA_SOURCE_DIRECTORY "/packaging/manpage.sh' lumora");
  for (const std::string& command : allCommands()) {
    EXPECT_TRUE(says(page, "\n.SS lumora " + command + "\n"));
  }
  for (const char* option :
       {"\\-\\-skip\\-existing", "\\-\\-jobs N", "\\-\\-rounds N", ".SH EXAMPLES",
        ".SH \"EXIT STATUS\"", ".SH FILES", ".SH ENVIRONMENT"}) {
    EXPECT_TRUE(says(page, option));
  }
}

TEST_F(DocumentedTest, BashCompletesCommandsOptionsAndValues) {
  // The last word is the one at the cursor.
  writeFile("complete.sh", R"(
. "$1/packaging/completions/lumora.bash"
shift
COMP_WORDS=(lumora "$@") COMP_CWORD=$#
_lumora
echo -n ${COMPREPLY[@]}
)");
  const auto completed = [this](const std::string& line) {
    return shell("bash complete.sh '" LUMORA_SOURCE_DIRECTORY "' " + line);
  };
  EXPECT_EQ(completed("be"), "bench");
  EXPECT_EQ(completed("apply --skip"), "--skip-existing");
  EXPECT_EQ(completed("bench --rou"), "--rounds");
  EXPECT_EQ(completed("pack create --sl"), "--slot");
  EXPECT_EQ(completed("apply --look mos"), "mosaic");
  EXPECT_EQ(completed("looks ti"), "tianmeikeren tilt-shift");
  // With "--look=" the shell makes words of the option, "=" and what follows.
  EXPECT_EQ(completed("apply --look = fug"), "fugu");
  EXPECT_TRUE(says(completed("apply --look ="), "moran rixi fugu"));
  EXPECT_EQ(completed("apply --look fugu,lo"), "fugu,lofi");
  EXPECT_EQ(completed("gallery --looks = fugu,lofi,ori"), "fugu,lofi,original");
  EXPECT_EQ(completed("pack create --slot vig"), "vignette=");
  EXPECT_EQ(completed("pack create --slot vignette = pa"), "");
  EXPECT_EQ(completed("apply --direction ''"), "0 1 2 3");
  EXPECT_EQ(completed("lut --to c"), "cube");
  // The listed formats are the ones that apply takes.
  std::istringstream formats(completed("apply --to ''"));
  int count = 0;
  for (std::string format; formats >> format; ++count) {
    refuse(1, "apply -l moran no.png - --to " + format, "no.png: there is no such file");
  }
  EXPECT_EQ(count, 6) << formats.str();
}

// A page's commands, one after the other: those of its indented blocks, with what they put out
// where they stand behind a "$". Its document is there under the name that the commands give it.
TEST_F(DocumentedTest, TheCommandsOfThePagesWorkAsWritten) {
  writePicture("photo.jpg", 400, 300);
  writeFile("in", Bytes(1280 * 720 * 3 / 2, 90));
  int commands = 0, outputs = 0;
  for (const char* name : {"README.md", "docs/textures.md", "docs/tuning.md"}) {
    SCOPED_TRACE(name);
    shell("rm -f result.jpg");
    const std::string page =
        shell("sed 's|build/release/tools/lumora/lumora|lumora|' '" LUMORA_SOURCE_DIRECTORY "/" +
              std::string(name) + "'");
    if (const auto xml = page.find("```xml\n"); xml != page.npos) {
      writeFile("rixi.xml", page.substr(xml + 7, page.find("```", xml + 7) - xml - 7));
    }
    std::smatch found;
    std::string rest = page;
    const std::regex command(
        "\n( {4,6})(\\$ )?((lumora|head) [^\n]*)\n((?: {4}(?! *\\$)[^\n]*\n)*)");
    for (; std::regex_search(rest, found, command);
         rest = '\n' + found.str(5) + found.suffix().str()) {
      ++commands;
      const ToolResult result = runShell(found[3]);
      if (!found[2].matched) {
        EXPECT_EQ(result.exitCode, 0) << found[3] << '\n' << result.error;
        continue;
      }
      ++outputs;
      const std::string shown =
          std::regex_replace(found.str(5), std::regex("(^|\n)" + found.str(1)), "$1");
      EXPECT_EQ(result.output + result.error, shown) << found[3];
    }
  }
  EXPECT_EQ(commands, 18);
  EXPECT_EQ(outputs, 4);
}

// The colours of the result are those that apply gives the video's pictures.
TEST_F(DocumentedTest, TheVideoPipelineWorksAsWritten) {
  if (runShell("command -v ffmpeg && command -v ffprobe").exitCode != 0) {
    GTEST_SKIP() << "no ffmpeg";
  }
  const std::string help = succeed("frame --help");
  writeFile("pipeline.sh", help.substr(help.find("  ffmpeg ")));
  writeFile("all.sh", R"(
picture() {
  ffmpeg -v error -i "$1" -frames:v 1 -vf scale=in_color_matrix=bt709:in_range=tv "$2"
}
ffmpeg -v error -f lavfi -i testsrc=duration=0.4:size=1920x1080:rate=25 \
    -f lavfi -i sine=duration=0.4 -colorspace bt709 \
    -vf scale=out_color_matrix=bt709:out_range=tv -pix_fmt yuv420p -b:v 20M in.mp4
sh -e pipeline.sh
picture in.mp4 in.png
picture out.mp4 out.png
lumora apply -l xpro2 in.png expected.png
ffprobe -v error -show_entries stream=codec_type,nb_frames -of csv=p=0 out.mp4
)");
  const std::string streams = shell("sh -e all.sh");
  EXPECT_TRUE(says(streams, "video,10\n"));
  EXPECT_TRUE(says(streams, "audio,"));
  EXPECT_LT((open("out.png") - open("expected.png")).abs().avg(), 3);
}

}  // namespace
}  // namespace lumora::test
