// What the tool says about itself holds: help, manual page, completions, documented commands.
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
  EXPECT_EQ(commands.size(), 8u + 4u);
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
  for (const char* option : {"\\-\\-skip\\-existing", "\\-\\-jobs N", "\\-\\-rounds N"}) {
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
  // The listed formats are the ones that apply takes.
  std::istringstream formats(completed("apply --to ''"));
  int count = 0;
  for (std::string format; formats >> format; ++count) {
    refuse(1, "apply -l moran no.png - --to " + format, "no.png: there is no such file");
  }
  EXPECT_EQ(count, 6) << formats.str();
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
