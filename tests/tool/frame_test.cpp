// lumora frame: raw frames from files and pipes.
#include <cstring>

#include "support/mode_calls.h"
#include "tool_runner.h"

namespace lumora::test {
namespace {

struct Frames {
  Bytes before;
  Bytes after;
};

// Noise in a row of frames, and the same in black and white: each frame by a call of the library.
Frames noiseFrames(PixelFormat format, unsigned count, int padding = 0) {
  TestAllocator allocator;
  const TestHandle handle(allocator, {});
  Frames frames;
  const auto append = [](Bytes& all, const Bytes& frame) {
    all.insert(all.end(), frame.begin(), frame.end());
  };
  for (unsigned seed = 1; seed <= count; ++seed) {
    const TestPicture picture(format, 130, 90, padding, seed);
    append(frames.before, picture.snapshot());
    EXPECT_EQ(run({LUMORA_MODE_HEIBAI, format}, handle.get(), picture.image()), LUMORA_OK);
    append(frames.after, picture.snapshot());
  }
  return frames;
}

class FrameTest : public ToolTest {
 protected:
  const std::string heibai = "frame --look heibai --size 130x90 --format ";
};

TEST_F(FrameTest, FramesOfAllFormatsAndStridesThroughPipesAndFiles) {
  struct Case {
    PixelFormat format;
    const char* name;
    int rowBytes;
  };
  for (const auto& [format, name, rowBytes] :
       {Case{PixelFormat::kRgba, "rgba", 520}, Case{PixelFormat::kNv21, "nv21", 130},
        Case{PixelFormat::kNv12, "nv12", 130}}) {
    const Frames packed = noiseFrames(format, 7), padded = noiseFrames(format, 2, 30);
    writeFile("packed", packed.before);
    writeFile("padded", padded.before);
    // Nothing but the frames: the library prints two lines around the four-threaded NV12 step.
    shell("cat packed | lumora " + heibai + name + " | cat > out");
    EXPECT_EQ(readFile("out"), packed.after) << name;
    const std::string stride = " --stride " + std::to_string(rowBytes + 30);
    for (const char* threads : {"", " --single-thread"}) {
      succeed(heibai + name + stride + threads + " --force padded out");
      EXPECT_EQ(readFile("out"), padded.after) << name << threads;
    }
  }
}

// Every frame makes the marks whiter, but after some ten of them they are as white as they get.
TEST_F(FrameTest, EveryFrameOfFilmHasASeedOfItsOwn) {
  const Bytes frame = TestPicture(PixelFormat::kNv12, 600, 400).snapshot();
  const auto lastOf = [&](int count, const std::string& seed) {
    Bytes frames;
    for (int i = 0; i < count; ++i) frames.insert(frames.end(), frame.begin(), frame.end());
    writeFile("in", frames);
    succeed("frame --look 5 --size 600x400 --format nv12 --force --seed " + seed + " in out");
    const Bytes out = readFile("out");
    return Bytes(out.end() - static_cast<std::ptrdiff_t>(frame.size()), out.end());
  };
  const Bytes last = lastOf(12, "7");
  EXPECT_TRUE(lastOf(13, "6") == last);
  EXPECT_FALSE(lastOf(13, "7") == last);
}

// Frames of nv12 with their chroma in two planes, each behind its line.
Bytes asY4m(const std::string& header, const Bytes& frames) {
  constexpr std::size_t kLuma = 130 * 90, kPairs = kLuma / 4;
  const std::string mark = "FRAME Ip\n";
  Bytes video(header.begin(), header.end());
  for (std::size_t at = 0; at < frames.size(); at += kLuma + 2 * kPairs) {
    video.insert(video.end(), mark.begin(), mark.end());
    video.insert(video.end(), &frames[at], &frames[at] + kLuma);
    for (const std::size_t first : {0, 1}) {
      for (std::size_t i = 0; i < kPairs; ++i) video.push_back(frames[at + kLuma + 2 * i + first]);
    }
  }
  return video;
}

TEST_F(FrameTest, Y4mTellsItsSizeAndKeepsItsHeader) {
  const Frames frames = noiseFrames(PixelFormat::kNv12, 3);
  const std::string end = " F30000:1001 A1:1 XYSCSS=X XCOLORRANGE=FULL\n";
  for (const char* kind : {"", " C420", " C420jpeg Ip", " C420mpeg2 I?", " C420paldv"}) {
    const std::string header = std::string("YUV4MPEG2 W130 H90") + kind + end;
    writeFile("in", asY4m(header, frames.before));
    succeed("frame -l heibai --force in out");
    EXPECT_EQ(readFile("out"), asY4m(header, frames.after)) << kind;
    shell("cat in | lumora frame -l heibai | cmp - out");
  }
  const std::string limited = run("frame -l heibai --force - out <<X\nYUV4MPEG2 W90 H90\nX").error;
  EXPECT_TRUE(says(limited, "does not say that its levels are full range"));
  EXPECT_EQ(shell("cat out"), "YUV4MPEG2 W90 H90\n");
  for (const auto& [content, said] :
       Refusals{{"", "in: is empty"},
                {"nothing", "in: is no Y4M; --format nv21, nv12 or rgba"},
                {"YUV4MPEG2 W90 H90 C444\n", "is Y4M of the kind C444; only 4:2:0"},
                {"YUV4MPEG2 W90 H90 C420p10\n", "is Y4M of the kind C420p10"},
                {"YUV4MPEG2 W90 H90 It\n", "is interlaced"},
                {"YUV4MPEG2 W90\n", "tells no size"},
                {"YUV4MPEG2 W-90 H90\n", "has the side '-90'"},
                {"YUV4MPEG2 W91 H90\n", "needs even sides"},
                {"YUV4MPEG2 W90 H80\n", "is 90 x 80 pixels; looks need 88"},
                {"YUV4MPEG2 W90 H90 XCOLORRANGE=FULL\nFRAMES\n", "no frame where the 1."},
                {"YUV4MPEG2 W90 H90 XCOLORRANGE=FULL\n\nFRAME\n", "no frame where the 1."},
                {"YUV4MPEG2 W90 H90 XCOLORRANGE=FULL\nFRAME\nabc", "frame 1 is cut short: 3 of"},
                {"YUV4MPEG2 " + std::string(5000, 'X'), "in: is no Y4M"}}) {
    writeFile("in", content);
    refuse(1, "frame -l heibai in new", said);
    EXPECT_EQ(listFolder(), (Words{"in", "out"})) << content;
  }
  refuse(2, "frame -l heibai --size 130x90 in new", "Y4M has its own");
}

TEST_F(FrameTest, VerboseKeepsStandardOutputPure) {
  const Frames frames = noiseFrames(PixelFormat::kNv12, 2);
  writeFile("in", frames.before);
  const ToolResult result = run(heibai + "nv12 --verbose < in > out");
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(readFile("out"), frames.after);
  for (const char* line :
       {"filter: Filter Version", "Before FilterProcessNV12_multiThred!", "lumora: 2 frames"}) {
    EXPECT_TRUE(says(result.error, line));
  }
}

TEST_F(FrameTest, AShortLastFrameIsAnError) {
  Frames frames = noiseFrames(PixelFormat::kNv21, 3);
  frames.after.resize(frames.after.size() / 3 * 2);
  frames.before.resize(frames.after.size() + 100);
  writeFile("in", frames.before);
  const std::string said = "frame 3 is cut short: 100 of 17550 bytes";
  refuse(1, heibai + "nv21 in out", said);
  EXPECT_EQ(listFolder(), Words{"in"});
  refuse(1, heibai + "nv21 < in > out", said);
  EXPECT_EQ(readFile("out"), frames.after);
}

TEST_F(FrameTest, NoSignalLeavesAnythingHalfWritten) {
  for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGUSR1, SIGUSR2, SIGALRM, SIGVTALRM,
                           SIGPROF, SIGXCPU, SIGIO, SIGPWR, SIGSTKFLT, SIGRTMIN, SIGRTMAX}) {
    interrupt(
        heibai + "rgba /dev/zero out", [this] { return !listFolder().empty(); }, signal);
    EXPECT_EQ(listFolder(), Words{}) << strsignal(signal);
  }
}

TEST_F(FrameTest, AFullDiskIsNamedAndLeavesNothingHalfWritten) {
  const auto expectFailure = [this](const std::string& command, const std::string& said) {
    const ToolResult result = runShell(command);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(says(result.error, said));
    EXPECT_EQ(result.output, "");
  };
  const std::string endless = "lumora " + heibai + "rgba /dev/zero ";
  expectFailure("ulimit -f 200; exec " + endless + "out", "out: writing failed: File too large");
  expectFailure(endless + "/dev/full", "/dev/full: writing failed: No space left");
  expectFailure("(" + endless + "-; echo $? >&2) | head -c 10 >/dev/null; exit 1",
                "standard output: writing failed: Broken pipe\n1\n");
  EXPECT_EQ(listFolder(), Words{});

  const std::string mount = "mkdir disk; mount -t tmpfs -o size=200k tmpfs disk";
  const std::string alone = "exec unshare --user --map-root-user --mount sh -c '" + mount;
  if (runShell(alone + "; rmdir disk; true'").exitCode != 0) GTEST_SKIP() << "no file systems";
  expectFailure(alone + "; " + endless + "disk/out; code=$?; ls -A disk; exit $code'",
                "disk/out: writing failed: No space left");
}

// The library's lines go to standard error then.
TEST_F(FrameTest, LinesThatNobodyReadsEndNothing) {
  const Frames frames = noiseFrames(PixelFormat::kNv12, 300);
  writeFile("in", frames.before);
  shell("(lumora " + heibai +
        "nv12 --verbose in out; echo $? > code) 2>&1 | head -c 1 > /dev/null");
  EXPECT_EQ(shell("cat code"), "0\n");
  EXPECT_EQ(readFile("out"), frames.after);
}

}  // namespace
}  // namespace lumora::test
