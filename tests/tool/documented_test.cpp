// What the tool says about itself holds: help, manual page, completions, documented commands.
#include <gtest/gtest.h>

#include <sstream>

#include "pictures.h"
#include "tool_runner.h"

namespace lumora::test {
namespace {

using Words = std::vector<std::string>;

class DocumentedTest : public ToolTest {
 protected:
  // The first words of the indented lines behind a line of a help text.
  Words listedIn(const Words& help, const std::string& heading) const {
    std::istringstream lines(run(help).outputText());
    Words names;
    bool inside = heading.empty();
    for (std::string line; std::getline(lines, line);) {
      if (line == heading) inside = true;
      if (inside && line.empty() && !names.empty()) break;
      if (inside && line.starts_with("  ")) {
        std::istringstream words(line);
        words >> names.emplace_back();
      }
    }
    return names;
  }

  std::vector<Words> allCommands() const {
    std::vector<Words> commands;
    for (const std::string& name : listedIn({"--help"}, "Commands:")) commands.push_back({name});
    for (const std::string& name : listedIn({"pack", "--help"}, "")) {
      commands.push_back({"pack", name});
    }
    return commands;
  }
};

std::string joined(const Words& words) {
  std::string all;
  for (const std::string& word : words) all += (all.empty() ? "" : " ") + word;
  return all;
}

TEST_F(DocumentedTest, EveryCommandExplainsItselfWithExamples) {
  const std::string overview = run({"--help"}).outputText();
  EXPECT_NE(overview.find("Exit codes: 0 all done, 1 a picture failed"), std::string::npos);
  EXPECT_EQ(run({"--version"}).outputText().find("lumora "), 0u);
  const std::vector<Words> commands = allCommands();
  EXPECT_EQ(commands.size(), 8u + 4u);
  for (Words command : commands) {
    command.emplace_back("--help");
    const ToolResult result = run(command);
    EXPECT_EQ(result.exitCode, 0) << joined(command);
    EXPECT_EQ(result.standardError, "");
    const std::string help = result.outputText();
    EXPECT_EQ(help.find("Usage: lumora " + command[0]), 0u) << help;
    EXPECT_NE(help.find("\nExamples:\n  lumora "), std::string::npos) << help;
  }
}

TEST_F(DocumentedTest, TheManualPageHasEveryCommandAndOption) {
  const std::string page =
      runShell("bash '" LUMORA_SOURCE_DIRECTORY "/packaging/manpage.sh' \"$LUMORA\"").outputText();
  for (const Words& command : allCommands()) {
    EXPECT_NE(page.find("\n.SS lumora " + joined(command) + "\n"), std::string::npos);
  }
  for (const char* option : {"\\-\\-skip\\-existing", "\\-\\-jobs N", "\\-\\-rounds N"}) {
    EXPECT_NE(page.find(option), std::string::npos) << option;
  }
}

TEST_F(DocumentedTest, BashCompletesCommandsOptionsAndValues) {
  // The last word is the one at the cursor.
  const auto completed = [this](const Words& line) {
    const std::string script = "PATH=$(dirname \"$LUMORA\"):$PATH; . '" LUMORA_SOURCE_DIRECTORY
                               "/packaging/completions/lumora.bash'; COMP_WORDS=(lumora " +
                               joined(line) + "); COMP_CWORD=" + std::to_string(line.size()) +
                               "; _lumora; echo ${COMPREPLY[@]}";
    writeFile("complete.sh", script.data(), script.size());
    const ToolResult result = runShell("bash complete.sh");
    EXPECT_EQ(result.standardError, "");
    const std::string text = result.outputText();
    return text.substr(0, text.find('\n'));
  };
  EXPECT_EQ(completed({"be"}), "bench");
  EXPECT_EQ(completed({"apply", "--skip"}), "--skip-existing");
  EXPECT_EQ(completed({"bench", "--rou"}), "--rounds");
  EXPECT_EQ(completed({"pack", "create", "--sl"}), "--slot");
  EXPECT_EQ(completed({"apply", "--look", "mos"}), "mosaic");
  EXPECT_EQ(completed({"looks", "ti"}), "tianmeikeren tilt-shift");
  // The listed formats are the ones that apply takes.
  const std::string formats = completed({"apply", "--to", "''"});
  std::istringstream words(formats);
  int count = 0;
  for (std::string format; words >> format; ++count) {
    const ToolResult result = run({"apply", "-l", "moran", "--to", format, "no.png", "-"});
    EXPECT_EQ(result.exitCode, 1) << format;
  }
  EXPECT_EQ(count, 6) << formats;
}

// The colours of the result are those that apply gives the video's pictures.
TEST_F(DocumentedTest, TheVideoPipelineWorksAsWritten) {
  if (runShell("command -v ffmpeg && command -v ffprobe").exitCode != 0)
    GTEST_SKIP() << "no ffmpeg";
  const std::string help = run({"frame", "--help"}).outputText();
  const std::string pipeline = help.substr(help.find("  ffmpeg "));
  writeFile("pipeline.sh", pipeline.data(), pipeline.size());
  const std::string decode = " -frames:v 1 -vf scale=in_color_matrix=bt709:in_range=tv ";
  const ToolResult result = runShell(
      "set -e; PATH=$(dirname \"$LUMORA\"):$PATH; "
      "ffmpeg -v error -f lavfi -i testsrc=duration=0.4:size=1920x1080:rate=25 "
      "-f lavfi -i sine=duration=0.4 -colorspace bt709 "
      "-vf scale=out_color_matrix=bt709:out_range=tv -pix_fmt yuv420p -b:v 20M in.mp4; "
      "sh -e pipeline.sh; "
      "ffmpeg -v error -i in.mp4" +
      decode +
      "in.png; "
      "ffmpeg -v error -i out.mp4" +
      decode +
      "out.png; "
      "lumora apply -l xpro2 in.png expected.png; "
      "ffprobe -v error -show_entries stream=codec_type,nb_frames -of csv=p=0 out.mp4");
  ASSERT_EQ(result.exitCode, 0) << result.standardError;
  EXPECT_NE(result.outputText().find("video,10\n"), std::string::npos) << result.outputText();
  EXPECT_NE(result.outputText().find("audio,"), std::string::npos) << result.outputText();
  const auto open = [this](const char* name) { return openUpright(pathOf(name)); };
  EXPECT_LT((open("out.png") - open("expected.png")).abs().avg(), 3);
}

}  // namespace
}  // namespace lumora::test
