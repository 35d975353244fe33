// lumora apply on many pictures: trees, several jobs, what is left out and what is not lost.
#include <filesystem>
#include <sstream>

#include "pictures.h"

namespace lumora::test {
namespace {

namespace fs = std::filesystem;

class BatchTest : public PictureTest {
 protected:
  // Twelve pictures in three folders, four files among them that are none, and files that are not
  // named like pictures.
  BatchTest() {
    fs::create_directories(pathOf("photos/b/c"));
    for (int i = 0; i < 12; ++i) {
      const char* const folder = i % 3 == 0 ? "" : i % 3 == 1 ? "b/" : "b/c/";
      writePicture("photos/" + std::string(folder) + "p" + std::to_string(i) + ".jpg", 96 + 8 * i);
    }
    shell("cd photos; head -c 500 p0.jpg | tee a-cut.jpg > b/c/z-cut.jpg; touch b/empty.jpg");
    shell("cd photos; echo no picture | tee b/p-text.jpg notes.txt > .hidden.jpg");
  }
};

TEST_F(BatchTest, JobsChangeNeitherFilesNorReports) {
  const std::string batch = "apply -l moran --recursive --out-dir out --suffix _x photos no.jpg";
  const ToolResult one = run(batch);
  const auto files = filesIn("out");
  EXPECT_EQ(one.exitCode, 1);
  EXPECT_EQ(files.size(), 12u);
  EXPECT_EQ(files.count("b/c/p2_x.jpg"), 1u);
  // Without a terminal there is no bar, only the faults in the order of the names.
  std::istringstream lines(one.error);
  for (const char* said :
       {"photos/a-cut.jpg: cannot be read, it seems damaged: Vips", "photos/b/c/z-cut.jpg: cannot",
        "photos/b/empty.jpg: is empty", "photos/b/p-text.jpg: is not a picture",
        "no.jpg: there is no such file", "5 of 17 pictures failed"}) {
    std::string line;
    std::getline(lines, line);
    EXPECT_TRUE(line.starts_with("lumora: " + std::string(said))) << line;
  }
  for (const char* jobs : {"3", "auto", "40"}) {
    fs::remove_all(pathOf("out"));
    const ToolResult several = run(batch + " --jobs " + jobs);
    EXPECT_EQ(several.exitCode, 1);
    EXPECT_EQ(several.error, one.error) << jobs;
    EXPECT_EQ(filesIn("out"), files) << jobs;
  }
}

// The image library's threads share one list of complaints.
TEST_F(BatchTest, EveryDamageIsExplainedByItsOwnComplaint) {
  writePicture("p.jpg");
  writePicture("p.png");
  shell(
      "mkdir cut; for i in $(seq -w 30); do head -c -900 p.jpg > cut/$i.jpg;"
      "head -c -900 p.png > cut/$i.png; done");
  const ToolResult one = run("apply -l moran -r -d out cut");
  EXPECT_EQ(run("apply -l moran -r -d out --jobs 8 cut").error, one.error);
  EXPECT_TRUE(says(one.error, "cut/01.jpg: cannot be read, it seems damaged: VipsJpeg"));
  EXPECT_TRUE(says(one.error, "cut/01.png: cannot be read, it seems damaged: "));
}

TEST_F(BatchTest, VerboseLinesOfSeveralJobsStayWhole) {
  std::istringstream lines(run("apply -l moran -r --jobs 4 --verbose -d out photos").error);
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
  const std::string batch = "apply -l moran -r -d photos/done --skip-existing -v photos";
  EXPECT_EQ(run(batch).exitCode, 1);
  auto files = filesIn("photos/done");
  EXPECT_EQ(files.size(), 12u);
  writeFile("photos/done/p0.jpg", "mine");
  fs::remove(pathOf("photos/done/b/p1.jpg"));

  EXPECT_TRUE(says(run(batch).error, "11 left out"));
  files["p0.jpg"] = {'m', 'i', 'n', 'e'};
  EXPECT_EQ(filesIn("photos/done"), files);

  succeed("apply -l moran --skip-existing photos/p3.jpg photos/done/p0.jpg");
  EXPECT_EQ(filesIn("photos/done"), files);
}

TEST_F(BatchTest, NothingIsLostToMadeUpNames) {
  for (const char* name : {"a.png", "a.jpg", "a_x.png"}) writePicture(name);
  fs::create_directories(pathOf("empty"));
  const auto before = filesIn(".");
  for (const auto& [arguments, said] :
       Refusals{{"-d . a.png", "a.png: would be overwritten; use --suffix"},
                {"-d . --suffix _x a.png a_x.png", "would overwrite a_x.png"},
                {"-r -d photos photos/p0.jpg", "would be overwritten"},
                {"-r -d out empty", "empty: holds no pictures"},
                {"-d out photos", "photos: is a folder, not a picture; --recursive"}}) {
    refuse(1, "apply -l moran " + arguments, said);
    for (const auto& [name, bytes] : before) EXPECT_EQ(readFile(name), bytes) << name;
  }
  for (const char* out : {"-j 1 -d one", "-j 2 -d two"}) {
    refuse(1, std::string("apply -l moran --to png a.png a.jpg ") + out,
           "a.png is already made from a.png");
  }
  EXPECT_EQ(filesIn("one").size(), 1u);
  EXPECT_EQ(filesIn("one"), filesIn("two"));
}

TEST_F(BatchTest, ATerminalSeesTheBar) {
  if (runShell("command -v script").exitCode != 0) GTEST_SKIP() << "no program for terminals";
  const ToolResult terminal = runShell("script -qec true /dev/null");
  if (terminal.exitCode != 0) GTEST_SKIP() << "no terminal can be made: " << terminal.error;
  const auto shown = [this](const std::string& more) {
    const std::string batch = "lumora apply --force -l moran -r -d out photos" + more;
    return runShell("TERM=xterm script -qec '" + batch + "' /dev/null").output;
  };
  const std::string bar = shown("");
  for (const char* part : {"] 16/16  ", " pictures/s  in ", "4 of 16 pictures failed"}) {
    EXPECT_TRUE(says(bar, part));
  }
  EXPECT_FALSE(says(shown(" -v"), "pictures/s"));
}

TEST_F(BatchTest, AnInterruptLeavesOnlyWholePictures) {
  fs::create_directories(pathOf("many"));
  writePicture("many/0.png", 1200, 900);
  shell("for i in $(seq 59); do cp many/0.png many/$i.png; done");
  interrupt("apply -l moran -r -j 3 -d out many",
            [this] { return fs::exists(pathOf("out/10.png")); });
  const auto files = filesIn("out");
  EXPECT_LT(files.size(), 60u);
  for (const auto& [name, bytes] : files) {
    EXPECT_FALSE(name.starts_with('.')) << name;
    EXPECT_EQ(bytes, files.at("10.png")) << name;
  }
}

}  // namespace
}  // namespace lumora::test
