// lumora apply on many pictures: trees, several jobs, what is left out and what is not lost.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <sstream>

#include "pictures.h"
#include "tool_runner.h"

namespace lumora::test {
namespace {

namespace fs = std::filesystem;
using Words = std::vector<std::string>;

class BatchTest : public ToolTest {
 protected:
  // Twelve pictures in three folders, four files among them that are none, and files that are not
  // named like pictures.
  BatchTest() {
    fs::create_directories(pathOf("photos/b/c"));
    for (int i = 0; i < 12; ++i) {
      const char* const folder = i % 3 == 0 ? "" : i % 3 == 1 ? "b/" : "b/c/";
      writePicture("photos/" + std::string(folder) + "p" + std::to_string(i) + ".jpg", 96 + 8 * i);
    }
    const Bytes whole = readFile("photos/p0.jpg");
    const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(whole.size() / 2));
    writeFile("photos/a-cut.jpg", cut);
    writeFile("photos/b/empty.jpg", Bytes());
    writeFile("photos/b/p-text.jpg", "not a picture", 13);
    writeFile("photos/b/c/z-cut.jpg", cut);
    writeFile("photos/notes.txt", "notes", 5);
    writeFile("photos/.hidden.jpg", "not a picture", 13);
  }

  void writePicture(const std::string& name, int width = 128, int height = 96) const {
    colourfulPicture(width, height).write_to_file(pathOf(name).c_str());
  }

  ToolResult apply(Words more) const {
    more.insert(more.begin(), {"apply", "--look", "lianghong"});
    return run(more);
  }

  // Every file below a folder with its content.
  std::map<std::string, Bytes> filesIn(const std::string& folder) const {
    std::map<std::string, Bytes> files;
    for (const auto& entry : fs::recursive_directory_iterator(pathOf(folder))) {
      const std::string name = fs::relative(entry.path(), pathOf(folder)).string();
      if (entry.is_regular_file()) files[name] = readFile(folder + "/" + name);
    }
    return files;
  }
};

TEST_F(BatchTest, JobsChangeNeitherFilesNorReports) {
  const Words batch = {"--recursive", "--out-dir", "out", "photos", "missing.jpg"};
  const ToolResult one = apply(batch);
  const auto files = filesIn("out");
  EXPECT_EQ(one.exitCode, 1);
  EXPECT_EQ(files.size(), 12u);
  EXPECT_EQ(files.count("b/c/p2.jpg"), 1u);
  // Without a terminal there is no bar, only the faults in the order of the names.
  std::istringstream lines(one.standardError);
  for (const char* said :
       {"photos/a-cut.jpg: cannot be read, it seems damaged: Vips", "photos/b/c/z-cut.jpg: cannot",
        "photos/b/empty.jpg: is empty", "photos/b/p-text.jpg: is not a picture",
        "missing.jpg: there is no such file", "5 of 17 pictures failed"}) {
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line.find("lumora: " + std::string(said)), 0u) << line;
  }

  for (const char* jobs : {"3", "auto", "40"}) {
    fs::remove_all(pathOf("out"));
    Words words = batch;
    words.insert(words.end(), {"--jobs", jobs});
    const ToolResult several = apply(words);
    EXPECT_EQ(several.exitCode, 1);
    EXPECT_EQ(several.standardError, one.standardError) << jobs;
    EXPECT_EQ(filesIn("out"), files) << jobs;
  }
}

// The image library's threads share one list of complaints.
TEST_F(BatchTest, EveryDamageIsExplainedByItsOwnComplaint) {
  fs::create_directories(pathOf("cut"));
  writePicture("whole.png");
  const std::string whole[] = {"photos/p0.jpg", "whole.png"};
  for (int i = 0; i < 60; ++i) {
    Bytes bytes = readFile(whole[i % 2]);
    bytes.resize(bytes.size() * 3 / 4);
    writeFile("cut/" + std::to_string(100 + i) + fs::path(whole[i % 2]).extension().string(),
              bytes);
  }
  const ToolResult one = apply({"-r", "-d", "out", "cut"});
  const ToolResult several = apply({"-r", "-d", "out", "--jobs", "8", "cut"});
  EXPECT_EQ(several.standardError, one.standardError);
  EXPECT_NE(one.standardError.find("cut/100.jpg: cannot be read, it seems damaged: VipsJpeg"),
            std::string::npos);
  EXPECT_NE(one.standardError.find("cut/101.png: cannot be read, it seems damaged: "),
            std::string::npos);
}

TEST_F(BatchTest, VerboseLinesOfSeveralJobsStayWhole) {
  const ToolResult result =
      apply({"--recursive", "--jobs", "4", "--verbose", "--out-dir", "out", "photos"});
  std::istringstream lines(result.standardError);
  int done = 0;
  for (std::string line; std::getline(lines, line);) {
    const bool isReport = line.starts_with("lumora: ") && line.find("lumora: ", 1) == line.npos;
    EXPECT_TRUE(isReport || line.starts_with("filter: ")) << line;
    done += line.find(" -> out/") != line.npos;
  }
  EXPECT_EQ(done, 12);
}

TEST_F(BatchTest, SkipExistingMakesOnlyWhatIsMissing) {
  // The output folder inside of the input is not taken for input.
  const Words batch = {"-r", "-d", "photos/done", "--skip-existing", "-v", "photos"};
  EXPECT_EQ(apply(batch).exitCode, 1);
  auto files = filesIn("photos/done");
  EXPECT_EQ(files.size(), 12u);
  writeFile("photos/done/p0.jpg", "mine", 4);
  fs::remove(pathOf("photos/done/b/p1.jpg"));

  const ToolResult again = apply(batch);
  EXPECT_NE(again.standardError.find("11 left out"), std::string::npos) << again.standardError;
  files["p0.jpg"] = {'m', 'i', 'n', 'e'};
  EXPECT_EQ(filesIn("photos/done"), files);

  writeFile("out.png", "mine", 4);
  EXPECT_EQ(apply({"--skip-existing", "photos/p0.jpg", "out.png"}).exitCode, 0);
  EXPECT_EQ(readFile("out.png").size(), 4u);
}

TEST_F(BatchTest, NothingIsLostToMadeUpNames) {
  writePicture("a.png");
  writePicture("a.jpg");
  writePicture("a_x.png");
  fs::create_directories(pathOf("empty"));
  const auto before = filesIn(".");
  struct Case {
    Words words;
    const char* said;
  };
  for (const Case& c : std::initializer_list<Case>{
           {{"-d", ".", "a.png"}, "a.png: would be overwritten; use --suffix"},
           {{"-d", ".", "--suffix", "_x", "a.png", "a_x.png"}, "would overwrite a_x.png"},
           {{"-r", "-d", "photos", "photos/p0.jpg"}, "would be overwritten"},
           {{"-r", "-d", "out", "empty"}, "empty: holds no pictures"},
           {{"-d", "out", "photos"}, "photos: is a folder, not a picture; --recursive"}}) {
    const ToolResult result = apply(c.words);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_NE(result.standardError.find(c.said), std::string::npos) << result.standardError;
    for (const auto& [name, bytes] : before) EXPECT_EQ(readFile(name), bytes) << name;
  }
  for (const char* jobs : {"1", "2"}) {
    const ToolResult twice =
        apply({"-j", jobs, "-d", std::string("o") + jobs, "--to", "png", "a.png", "a.jpg"});
    EXPECT_EQ(twice.exitCode, 1);
    EXPECT_NE(twice.standardError.find("a.png is already made from a.png"), std::string::npos);
  }
  EXPECT_EQ(readFile("o1/a.png"), readFile("o2/a.png"));
}

TEST_F(BatchTest, ATerminalSeesTheBar) {
  const std::string batch = "$LUMORA apply -l moran -r -d out photos";
  if (runShell("command -v script").exitCode != 0) GTEST_SKIP() << "no program for terminals";
  const std::string shown =
      runShell("TERM=xterm script -qec '" + batch + "' /dev/null").outputText();
  EXPECT_NE(shown.find("] 16/16  "), std::string::npos) << shown;
  EXPECT_NE(shown.find(" pictures/s  in "), std::string::npos) << shown;
  EXPECT_NE(shown.find("4 of 16 pictures failed"), std::string::npos) << shown;
  const std::string verbose =
      runShell("TERM=xterm script -qec '" + batch + " -v' /dev/null").outputText();
  EXPECT_EQ(verbose.find("pictures/s"), std::string::npos) << verbose;
}

TEST_F(BatchTest, AnInterruptLeavesOnlyWholePictures) {
  fs::create_directories(pathOf("many"));
  writePicture("many/0.png", 1200, 900);
  for (int i = 1; i < 60; ++i) {
    fs::copy_file(pathOf("many/0.png"), pathOf("many/" + std::to_string(i) + ".png"));
  }
  int pipe = -1;
  const pid_t tool = start({"apply", "-l", "moran", "-r", "-j", "3", "-d", "out", "many"}, pipe);
  ASSERT_GT(tool, 0);
  ::close(pipe);
  const auto isWhole = [](const std::string& name) { return name.front() != '.'; };
  const auto wholeFiles = [&] {
    if (!fs::exists(pathOf("out"))) return std::ptrdiff_t{0};
    const Words names = listFolder("out");
    return std::count_if(names.begin(), names.end(), isWhole);
  };
  int status = 0;
  while (wholeFiles() < 3 && ::waitpid(tool, &status, WNOHANG) == 0) ::usleep(1000);
  ASSERT_EQ(::kill(tool, SIGINT), 0);
  ASSERT_EQ(::waitpid(tool, &status, 0), tool);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGINT);

  const Words names = listFolder("out");
  EXPECT_LT(names.size(), 60u);
  const Bytes first = readFile("out/" + names.front());
  for (const std::string& name : names) {
    EXPECT_TRUE(isWhole(name)) << name;
    EXPECT_EQ(readFile("out/" + name), first) << name;
  }
}

}  // namespace
}  // namespace lumora::test
