// lumora frame: raw frames from files and pipes.
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
      succeed(heibai + name + stride + threads + " padded out");
      EXPECT_EQ(readFile("out"), padded.after) << name << threads;
    }
  }
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

TEST_F(FrameTest, AnInterruptLeavesNothingHalfWritten) {
  interrupt(heibai + "rgba /dev/zero out", [this] { return !listFolder().empty(); });
  EXPECT_EQ(listFolder(), Words{});
}

}  // namespace
}  // namespace lumora::test
