// Where results go: every kind of thing that may lie there, and what may become of it.
#include <unistd.h>

#include <filesystem>
#include <map>

#include "pictures.h"

namespace lumora::test {
namespace {

namespace fs = std::filesystem;

// What is in a folder: bytes of files, targets of links, kinds of the rest.
using Snapshot = std::map<std::string, std::string>;

enum class Outcome { kMade, kRefused, kKept };
using enum Outcome;

// In the folder are in.png and, with the bytes "mine", other.png.
struct Place {
  const char* name;
  const char* setUp;  // for the shell
  const char* output;
  Outcome plain, forced, skipping;
};

constexpr Place kPlaces[] = {
    {"nothing", ":", "o.png", kMade, kMade, kMade},
    {"a file", ":", "other.png", kRefused, kMade, kKept},
    {"a link to a file", "ln -s other.png o.png", "o.png", kRefused, kMade, kKept},
    {"a hard link", "ln other.png o.png", "o.png", kRefused, kMade, kKept},
    {"the input", ":", "in.png", kRefused, kRefused, kKept},
    {"the input by a detour", "mkdir d", "./d/../in.png", kRefused, kRefused, kKept},
    {"the input's hard link", "ln in.png o.png", "o.png", kRefused, kRefused, kKept},
    {"a link to the input", "ln -s in.png p; ln -s p o.png", "o.png", kRefused, kRefused, kKept},
    {"the input through a folder's link", "ln -s . d", "d/in.png", kRefused, kRefused, kKept},
    {"a link that leads nowhere", "ln -s none.png o.png", "o.png", kRefused, kRefused, kRefused},
    {"a link to itself", "ln -s o.png o.png", "o.png", kRefused, kRefused, kRefused},
    {"a pipe that nobody reads", "mkfifo o.png", "o.png", kRefused, kRefused, kRefused},
    {"a missing folder", ":", "d/o.png", kRefused, kRefused, kRefused},
    {"a file's inside", ":", "other.png/o.png", kRefused, kRefused, kRefused},
    {"a descriptor that is closed", ":", "/dev/fd/9", kRefused, kRefused, kRefused},
};

class OutputsTest : public PictureTest {
 protected:
  OutputsTest() {
    writePicture("in.png");
    writeFile("other.png", "mine");
    succeed("apply -l heibai in.png o.png");
    filtered_ = readFile("o.png");
    fs::remove(pathOf("o.png"));
  }

  Snapshot snapshot() const {
    Snapshot all;
    for (const auto& entry : fs::directory_iterator(pathOf("."))) {
      const std::string name = entry.path().filename().string();
      if (entry.is_symlink()) {
        all[name] = "-> " + fs::read_symlink(entry.path()).string();
      } else if (entry.is_regular_file()) {
        const Bytes bytes = readFile(name);
        all[name].assign(bytes.begin(), bytes.end());
      } else {
        all[name] = entry.is_directory() ? "a folder" : "something else";
      }
    }
    return all;
  }

  std::string filtered() const { return {filtered_.begin(), filtered_.end()}; }

  // Runs the tool where a person is who may not do everything. Whether that is possible here.
  bool becomesOrdinary() const {
    shell("chmod 777 .");
    return runShell(asOrdinary("prlimit --nproc=99 lumora --version")).exitCode == 0;
  }
  static std::string asOrdinary(const std::string& command) {
    const bool isRoot = ::geteuid() == 0;
    return (isRoot ? "exec setpriv --reuid 54321 --regid 54321 --clear-groups " : "exec ") +
           ("sh -c '" + command + "'");
  }

  Bytes filtered_;  // in.png in black and white
};

TEST_F(OutputsTest, NothingIsLostWhereverAnOutputGoes) {
  struct Policy {
    const char* option;
    Outcome Place::*outcome;
  };
  const Snapshot clean = snapshot();
  for (const Place& place : kPlaces) {
    for (const auto& [option, outcome] : {Policy{"", &Place::plain},
                                          {"--force", &Place::forced},
                                          {"--skip-existing", &Place::skipping}}) {
      SCOPED_TRACE(std::string(place.name) + ' ' + option);
      shell(place.setUp);
      std::error_code isLoop;
      const fs::path real = fs::weakly_canonical(pathOf(place.output), isLoop);
      Snapshot expected = snapshot();
      const ToolResult result = run(std::string("apply -l heibai --to png ") + option + " in.png " +
                                    place.output + " 9>&-");
      EXPECT_EQ(result.exitCode, place.*outcome == kRefused ? 1 : 0) << result.error;
      EXPECT_EQ(result.error.empty(), result.exitCode == 0);
      if (place.*outcome == kMade) expected[real.filename().string()] = filtered();
      EXPECT_EQ(snapshot(), expected);
      for (const auto& [name, content] : snapshot()) {
        if (clean.count(name) == 0) fs::remove_all(pathOf(name));
      }
      writeFile("other.png", "mine");
    }
  }
}

TEST_F(OutputsTest, StandardOutputHasManyNames) {
  fs::create_symlink("/dev/stdout", pathOf("link"));
  fs::create_symlink("/proc/self/fd", pathOf("folder"));
  const std::string apply = "lumora apply -l heibai --to png in.png ";
  for (const char* name : {"-", "/dev/stdout", "/dev/fd/1", "/proc/self/fd/1", "link", "folder/1",
                           "/proc/thread-self/fd/1", "/dev/../dev/stdout"}) {
    SCOPED_TRACE(name);
    // Behind what is there, through a pipe, and as another descriptor.
    shell("{ echo above; " + apply + name + "; echo below; } > out; " + apply + name +
          " | cat > piped");
    EXPECT_EQ(snapshot().at("out"), "above\n" + filtered() + "below\n");
    EXPECT_EQ(readFile("piped"), filtered_);
    const ToolResult closed = runShell(apply + name + " >&-");
    EXPECT_EQ(closed.exitCode, 1);
    EXPECT_TRUE(says(closed.error, "cannot be written: it is not open for writing"));
    const ToolResult same = runShell(apply + name + " >> in.png");
    EXPECT_EQ(same.exitCode, 1);
    EXPECT_TRUE(says(same.error, "would be overwritten"));
  }
  shell("rm piped; mkfifo piped; cat piped > out & " + apply + "/dev/fd/7 7> seventh; sleep 0.2; " +
        apply + "piped; wait");
  EXPECT_EQ(readFile("seventh"), filtered_);
  EXPECT_EQ(readFile("out"), filtered_);
  succeed("apply -l heibai --to png in.png /dev/null");
}

// A file that is opened later must not become standard input, output or error.
TEST_F(OutputsTest, ClosedStandardStreamsHarmNothing) {
  const std::string frame = " frame -l heibai -f nv12 --size 88x88 frames ";
  writeFile("frames", Bytes(88 * 88 * 3 / 2, 0));
  succeed(frame + "expected");
  for (const char* closed : {"<&-", ">&-", "2>&-", "<&- >&- 2>&-"}) {
    for (const char* verbose : {"", " --verbose "}) {
      SCOPED_TRACE(closed + std::string(verbose));
      const auto run = [&](const std::string& arguments) {
        return runShell("exec lumora " + arguments + verbose + ' ' + closed).exitCode;
      };
      EXPECT_EQ(run("apply --force -l heibai in.png o.png"), 0);
      EXPECT_EQ(readFile("o.png"), filtered_);
      EXPECT_EQ(run(frame + "frames.out --force"), 0);
      EXPECT_EQ(readFile("frames.out"), readFile("expected"));
    }
  }
  refuse(1, "frame -l heibai -f nv12 --size 88x88 <&-", "standard input: cannot be read: Bad file");
  const ToolResult listing = run("looks >&-");
  EXPECT_EQ(listing.exitCode, 1);
  EXPECT_TRUE(says(listing.error, "standard output: writing failed"));
}

TEST_F(OutputsTest, EveryCommandAsksBeforeItReplaces) {
  fs::copy(LUMORA_BUILD_DIRECTORY "/mixIm.dat", pathOf("p.dat"));
  writeFile("frames", Bytes(90 * 90 * 4, 7));
  fs::create_directories(pathOf("textures"));
  struct Case {
    std::string command;
    std::string operands;
    std::string output;
    std::string input;  // that may not be the output; empty: there is none
  };
  for (const auto& [command, operands, output, input] :
       {Case{"apply", " -l heibai in.png o.png", "o.png", "in.png"},
        Case{"frame", " -l heibai -f rgba --size 90x90 frames o.png", "o.png", "frames"},
        Case{"gallery", " --looks 12 in.png o.png", "o.png", "in.png"},
        Case{"sample", " --size 100x100 o.png", "o.png", ""},
        Case{"pack show", " p.dat o.png", "o.png", "p.dat"},
        Case{"pack extract", " p.dat textures", "textures/speck.png", "p.dat"},
        Case{"pack create", " --slot speck=in.png --out o.png", "o.png", "in.png"},
        Case{"tune", " --default o.png", "o.png", ""}}) {
    SCOPED_TRACE(command);
    writeFile(output, "mine");
    // The new content does not get the rights that were lent to the old.
    shell("chmod 6751 " + output);
    const Snapshot before = snapshot();
    const ToolResult refused = run(command + operands);
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_TRUE(says(refused.error, "exists already; --force replaces it"));
    EXPECT_EQ(shell("cat " + output), "mine");
    EXPECT_EQ(snapshot(), before);
    succeed(command + " --force" + operands);
    EXPECT_GT(fs::file_size(pathOf(output)), 100u);
    EXPECT_EQ(shell("stat -c %a " + output), "751\n");
    fs::remove(pathOf(output));
    if (input.empty()) continue;
    const Bytes original = readFile(input);
    for (const char* link : {"ln ", "ln -sr "}) {
      shell(link + input + ' ' + output);
      const ToolResult lost = run(command + " --force" + operands);
      EXPECT_EQ(lost.exitCode, 1);
      EXPECT_TRUE(says(lost.error, "would be overwritten"));
      EXPECT_EQ(readFile(output), original);
      fs::remove(pathOf(output));
    }
  }
}

TEST_F(OutputsTest, InPlaceReplacesTheInputAndKeepsWhatIsAskedFor) {
  const Bytes original = readFile("in.png");
  fs::create_symlink("in.png", pathOf("link.png"));
  shell("chmod 4640 in.png");
  succeed("apply -l heibai --in-place --backup .orig link.png");
  EXPECT_EQ(readFile("in.png"), filtered_);
  EXPECT_EQ(readFile("in.png.orig"), original);
  EXPECT_EQ(shell("stat -c %a in.png in.png.orig"), "640\n4640\n");
  EXPECT_EQ(snapshot().at("link.png"), "-> in.png");

  // A backup is never replaced, and pictures without one are left as they are.
  shell("mkdir t; cp in.png.orig t/a.png; cp in.png.orig t/b.png; echo mine > t/b.png.orig");
  refuse(1, "apply -l heibai -r --in-place --force --backup .orig t",
         "t/b.png.orig exists already; use another --backup SUFFIX");
  EXPECT_EQ(readFile("t/a.png"), filtered_);
  EXPECT_EQ(readFile("t/b.png"), original);
  EXPECT_EQ(shell("cat t/b.png.orig"), "mine\n");

  for (const auto& [arguments, said] : Refusals{
           {"t/b.png t/../t/b.png", "t/../t/b.png is already made from t/b.png"},
           {"--backup g t/b.pn t/b.png", "t/b.pn: cannot be written in the format of its name"},
           {"other.png", "other.png: is not a picture"},
           {"none.png", "none.png: there is no such file"},
           {"t", "t: is a folder"}}) {
    shell("cp in.png.orig t/b.png; cp in.png.orig t/b.pn; ls -i t/b.pn > before");
    refuse(1, "apply -l heibai --in-place " + arguments, said);
    shell("ls -i t/b.pn | cmp - before");
  }
}

TEST_F(OutputsTest, TwoPicturesNeverShareAnOutput) {
  fs::create_directories(pathOf("made"));
  for (const char* name : {"a.png", "b.png", "c.png", "d.png"}) {
    fs::copy(pathOf("in.png"), pathOf(name));
  }
  shell(
      "cd made; ln -s ../other.png a.png; ln -s ../other.png b.png; echo mine > c.png;"
      "ln c.png d.png");
  const std::string batch = "apply -l heibai -d made a.png b.png c.png d.png";
  refuse(4, batch, "a.png: made/a.png exists already");
  EXPECT_EQ(snapshot().at("other.png"), "mine");
  const ToolResult forced = run(batch + " --force");
  EXPECT_EQ(forced.error,
            "lumora: b.png: made/b.png is already made from a.png\n"
            "lumora: d.png: made/d.png is already made from c.png\n"
            "lumora: 2 of 4 pictures failed\n");
  EXPECT_EQ(readFile("other.png"), filtered_);
  EXPECT_EQ(readFile("made/c.png"), filtered_);
  EXPECT_EQ(shell("cat made/d.png"), "mine\n");
}

// Root may do what others may not.
TEST_F(OutputsTest, WhatAnOrdinaryUserMayNotWriteStays) {
  if (!becomesOrdinary()) GTEST_SKIP() << "no other user can run the tool here";
  shell(
      "mkdir fixed; echo mine > fixed/a.png; chmod 666 fixed/a.png; chmod 555 fixed;"
      "cp in.png locked.png; chmod 444 locked.png");
  const Snapshot before = snapshot();
  for (const auto& [arguments, said] :
       Refusals{{"in.png fixed/o.png", "fixed/o.png: cannot be written: Permission denied"},
                {"--force in.png fixed/a.png", "fixed/a.png: cannot be written: Permission denied"},
                {"--force in.png locked.png", "locked.png: cannot be written: Permission denied"},
                {"--in-place locked.png", "locked.png: cannot be written: Permission denied"},
                {"--to png in.png /dev/mem", "/dev/mem: cannot be"}}) {
    const ToolResult result = runShell(asOrdinary("lumora apply -l heibai " + arguments));
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(says(result.error, said));
    EXPECT_EQ(snapshot(), before);
    EXPECT_EQ(shell("cat fixed/a.png"), "mine\n");
  }
  // Nobody but the owner may link such a file; its backup is made another way.
  shell("chmod 2777 in.png");
  shell(asOrdinary("lumora apply -l heibai --in-place --backup .orig in.png"));
  EXPECT_EQ(snapshot().at("in.png"), filtered());
  EXPECT_EQ(snapshot().at("in.png.orig"), before.at("in.png"));
}

// The mosaic's status is 0 whatever it lacks; what it lacked stands in the log.
TEST_F(OutputsTest, AMosaicIsMadeOrRefusedUnderEveryLimit) {
  if (kReduced) GTEST_SKIP() << "sanitizers need memory and threads of their own";
  if (!becomesOrdinary() || ::geteuid() != 0) GTEST_SKIP() << "no user without threads to be had";
  writePicture("big.png", 400, 300);
  writeFile("frames", Bytes(400 * 300 * 4, 77));
  const std::string mosaic = " -l mosaic --rect 40,40,200,200 ";
  for (const std::string& command :
       {"apply" + mosaic + "big.png ", "frame" + mosaic + "-f rgba --size 400x300 frames "}) {
    succeed(command + "expected.png --force");
    int made = 0, faults = 0;
    for (int threads = 1; threads <= 16; ++threads) {
      const ToolResult result =
          runShell(asOrdinary("VIPS_CONCURRENCY=1 prlimit --nproc=" + std::to_string(threads) +
                              " lumora " + command + "o.png"));
      SCOPED_TRACE(command + std::to_string(threads) + " threads: " + result.error);
      EXPECT_EQ(result.exitCode, fs::exists(pathOf("o.png")) ? 0 : 1);
      if (result.exitCode == 0) {
        ++made;
        EXPECT_EQ(readFile("o.png"), readFile("expected.png"));
      }
      faults +=
          result.error.find("could not be filtered: the library reports") != result.error.npos;
      fs::remove(pathOf("o.png"));
    }
    EXPECT_GT(made, 0);
    EXPECT_GT(faults, 0);
  }
}

}  // namespace
}  // namespace lumora::test
