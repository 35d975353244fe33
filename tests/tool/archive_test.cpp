// lumora apply on more than one machine or command line can take: lists, shares, runs that died,
// and what programs are told.
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

#include "pictures.h"

namespace lumora::test {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

class ArchiveTest : public PictureTest {
 protected:
  // Pairs of a jpg and a png in two folders, 22 pictures in all.
  ArchiveTest() {
    fs::create_directories(pathOf("photos/b"));
    writePicture("photos/1.jpg");
    writePicture("photos/1.png");
    shell(
        "cd photos; for i in $(seq 2 11); do cp 1.jpg $i.jpg; cp 1.png b/$i.png; done;"
        "cd ..; find photos -type f | sort > list");
  }

  static std::vector<Json> linesOf(const std::string& output) {
    std::vector<Json> lines;
    std::istringstream stream(output);
    for (std::string line; std::getline(stream, line);) lines.push_back(Json::parse(line));
    return lines;
  }
};

TEST_F(ArchiveTest, SharesMakeEveryPictureOnceWhateverTheOrderOfTheList) {
  succeed("apply -l moran -r -d whole photos");
  for (const std::string inputs :
       {"-r photos", "-r ./photos/", "--files-from list --suffix _x",
        "--suffix _x --null --files-from - < <(sort -r list | tr '\\n' '\\0')"}) {
    SCOPED_TRACE(inputs);
    std::map<std::string, Bytes> all;
    for (const std::string share : {"1/3", "2/3", "3/3"}) {
      fs::remove_all(pathOf("out"));
      shell("exec bash -c \"lumora apply -l moran -d out --shard " + share + ' ' + inputs + '"');
      const auto files = filesIn("out");
      EXPECT_TRUE(files.size() == 7 || files.size() == 8) << files.size();
      int jpgs = 0;
      for (const auto& [name, bytes] : files) jpgs += name.ends_with(".jpg");
      EXPECT_TRUE(jpgs > 0 && jpgs < 7) << "one share has all the pictures of a kind";
      all.insert(files.begin(), files.end());
    }
    EXPECT_EQ(all.size(), 22u);
    if (inputs.starts_with("-r")) {
      EXPECT_EQ(all, filesIn("whole"));
    }
  }
  // Two machines do not make one file of two pictures either.
  shell("cp -r photos again; find again photos -type f | sort > all; sort -r all > llist");
  int done = 0, failed = 0;
  for (const char* share : {"1/2 --files-from all", "2/2 --files-from llist"}) {
    const ToolResult result = run("apply -l moran --json -d two --shard " + std::string(share));
    const Json summary = linesOf(result.output).back()["summary"];
    done += summary["done"].get<int>();
    failed += summary["failed"].get<int>();
    EXPECT_TRUE(says(result.error, " is already made from again/"));
  }
  EXPECT_EQ(done, 22);
  EXPECT_EQ(failed, 22);
}

TEST_F(ArchiveTest, AListNamesWhatItNamesAndTheRestIsDone) {
  const std::string odd = "line\nbreak.jpg", latin = "caf\xE9.jpg";
  shell("mkdir odd dir; cp photos/1.jpg 'odd/" + odd + "'; cp photos/1.jpg 'odd/" + latin +
        "'; cp photos/1.jpg ./-; printf 'odd/" + odd + "\\0odd/" + latin +
        "\\0-\\0\\0none.jpg\\0dir\\0odd/" + latin + "' > list");
  const ToolResult result = run("apply -l heibai --json --null --files-from list -d out --to png");
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(listFolder("out"), (Words{"-.png", "caf\xE9.png", "line\nbreak.png"}));
  for (const char* said : {"list: 1 names stand in it again", "none.jpg: there is no such file",
                           "dir: is a folder", "2 of 5 pictures failed"}) {
    EXPECT_TRUE(says(result.error, said));
  }
  const std::vector<Json> lines = linesOf(result.output);
  ASSERT_EQ(lines.size(), 6u);
  EXPECT_EQ(lines[0]["input"], "odd/" + odd);
  EXPECT_EQ(lines[1]["input"], "odd/caf\xEF\xBF\xBD.jpg");
  EXPECT_EQ(lines[2]["output"], "out/-.png");
  for (const auto& [list, said] :
       Refusals{{"list", "line 2 holds a NUL; lists that NULs divide take --null"},
                {"none", "none: there is no such file"},
                {"dir", "dir: Is a directory"},
                {"- < <(yes | tr -d '\\n' | head -c 9999)", "entry 1 is too long for a name"},
                {"- -r", ""}}) {
    const ToolResult refused = runShell("exec bash -c \"lumora apply -l heibai --out-dir o " +
                                        ("--files-from " + list) + '"');
    EXPECT_EQ(refused.exitCode, said.empty() ? 0 : 2) << refused.error;
    EXPECT_TRUE(says(refused.error, said));
  }
  for (const auto& [arguments, said] :
       Refusals{{"--shard 3/2", "the shares of 2 are 1/2 to 2/2"},
                {"--shard 0/4", "the shares of 4 are 1/4 to 4/4"},
                {"--shard x", "'x' is not of the form K/N"},
                {"--memory 2", "'2' is not of the form 512M or 2G"},
                {"--null", "--null is about the list"},
                {"--json photos/1.jpg /dev/stdout --to png", "and so does the picture"},
                {"--files-from /dev/null a.jpg b.jpg", "--files-from needs --out-dir"}}) {
    refuse(2, "apply -l heibai " + arguments, said);
  }
}

TEST_F(ArchiveTest, ProgramsAreToldEverything) {
  fs::create_directories(pathOf("out"));
  writeFile("out/2.jpg", "mine");
  writeFile("photos/3.jpg", "no picture");
  const std::string batch = "apply -l fugu -r --skip-existing --json -j 3 -d out photos";
  const auto planned = linesOf(run(batch + " --dry-run").output);
  EXPECT_EQ(listFolder("out"), Words{"2.jpg"});
  const ToolResult result = run(batch);
  EXPECT_EQ(result.exitCode, 1);
  const auto lines = linesOf(result.output);
  ASSERT_EQ(lines.size(), 23u);
  ASSERT_EQ(planned.size(), lines.size());
  for (std::size_t i = 0; i < 22; ++i) {
    const Json& line = lines[i];
    EXPECT_EQ(line["output"], planned[i]["output"]);
    EXPECT_EQ(line["look"], "fugu");
    if (line["state"] != "done") continue;
    EXPECT_EQ(planned[i]["state"], "planned");
    EXPECT_EQ(line["width"], 128);
    EXPECT_EQ(line["height"], 96);
    EXPECT_EQ(line["bytes"], fs::file_size(pathOf(line["output"])));
    for (const char* step : {"decode", "filter", "encode"}) EXPECT_GT(line["ms"][step], 0);
    EXPECT_TRUE(line["warnings"].empty() && line["error"].is_null());
  }
  for (const Json& line : lines) {
    if (line.value("input", "") == "photos/2.jpg") {
      EXPECT_EQ(line["state"], "skipped");
    }
    if (line.value("state", "") == "failed") {
      EXPECT_TRUE(says(line["error"], "photos/3.jpg: is not a picture"));
    }
  }
  const Json summary = lines.back()["summary"];
  EXPECT_EQ(summary["pictures"], 22);
  EXPECT_EQ(summary["done"], 20);
  EXPECT_EQ(summary["skipped"], 1);
  EXPECT_EQ(summary["failed"], 1);
  // The failing one again beside those that are there, then alone with another.
  EXPECT_EQ(run(batch).exitCode, 1);
  EXPECT_EQ(run("apply -l fugu -d o photos/3.jpg none.jpg").exitCode, 4);
  EXPECT_EQ(succeed("apply -l fugu -r --dry-run -d new photos/b | tail -n 1"),
            "10 to do, 0 left out, 0 impossible\n");
}

TEST_F(ArchiveTest, SeveralLooksAreWhatEachMakesAlone) {
  writePicture("in.png");
  succeed(
      "apply -l old-film,mosaic,blur --seed 3 --rect 8,8,32,32 -s 75% -d out --suffix _x in.png");
  succeed("apply -l laodianying --seed 3 -s 8 in.png a.png");
  succeed("apply -l mosaic --rect 8,8,32,32 -s 8 in.png b.png");
  succeed("apply -l blur -s 12 in.png c.png");
  EXPECT_EQ(readFile("out/in_laodianying_x.png"), readFile("a.png"));
  EXPECT_EQ(readFile("out/in_mosaic_x.png"), readFile("b.png"));
  EXPECT_EQ(readFile("out/in_blur_x.png"), readFile("c.png"));
  succeed("apply -l fugu,heibai in.png pair.png");
  EXPECT_TRUE(fs::exists(pathOf("pair_fugu.png")));
  expectBlackAndWhite("pair_heibai.png", "in.png");
  for (const auto& [arguments, said] :
       Refusals{{"-l fugu,fugu in.png o.png", "--look: fugu is named twice"},
                {"-l fugu,lofi --rect 0,0,8,8 in.png o.png",
                 "belongs to the look mosaic, not fugu "
                 "or lofi"},
                {"-l fugu,lofi --in-place in.png", "--in-place has room for one look"},
                {"-l fugu,lofi in.png -", "several looks need a name"},
                {"-l fugu -s 40% in.png o.png", "--strength: 40% is outside 50%..150% of fugu"},
                {"-l blur -s 201% in.png o.png", "--strength: 201 is outside 0..200"}}) {
    refuse(2, "apply " + arguments, said);
  }
}

// What the run that died has made is whole, and the next one makes the rest.
TEST_F(ArchiveTest, ARunThatWasKilledIsFinishedByAnother) {
  fs::create_directories(pathOf("many"));
  writePicture("many/0.png", 1200, 900);
  shell("for i in $(seq 39); do cp many/0.png many/$i.png; done");
  const std::string batch = "apply -l moran -r -j 3 -d out many";
  interrupt(
      batch, [this] { return fs::exists(pathOf("out/10.png")); }, SIGKILL);
  std::map<std::string, fs::file_time_type> before;
  for (const std::string& name : listFolder("out")) {
    if (!name.starts_with('.')) before[name] = fs::last_write_time(pathOf("out/" + name));
  }
  EXPECT_LT(before.size(), 40u);
  shell("lumora " + batch + " --skip-existing --shard 2/2; lumora " + batch +
        " --skip-existing --shard 1/2");
  shell("rm -f out/.*.png.??????");
  const auto files = filesIn("out");
  EXPECT_EQ(files.size(), 40u);
  for (const auto& [name, bytes] : files) EXPECT_EQ(bytes, files.at("10.png")) << name;
  for (const auto& [name, time] : before) {
    EXPECT_EQ(fs::last_write_time(pathOf("out/" + name)), time) << name;
  }
}

TEST_F(ArchiveTest, AFullDiskNamesThePicturesThatItHasNoRoomFor) {
  const std::string disk = "mkdir -p disk; mount -t tmpfs -o size=60k tmpfs disk";
  const std::string alone = "exec unshare --user --map-root-user --mount sh -c '" + disk;
  if (runShell(alone + "; rmdir disk; true'").exitCode != 0) GTEST_SKIP() << "no file systems";
  const ToolResult result =
      runShell(alone +
               "; lumora apply -l moran -r -j 2 -d disk photos; code=$?;"
               "find disk -type f -name \".*\"; ls -RA disk | grep -c g$; exit $code'");
  EXPECT_EQ(result.exitCode, 1);
  const int made = std::stoi(result.output);
  EXPECT_TRUE(made > 0 && made < 22) << result.output;
  EXPECT_TRUE(says(result.error, ": writing failed: No space left on device"));
  EXPECT_TRUE(says(result.error, std::to_string(22 - made) + " of 22 pictures failed"));
}

}  // namespace
}  // namespace lumora::test
