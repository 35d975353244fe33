// lumora frame: raw frames from files and pipes.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tool_runner.h"

namespace lumora::test {
namespace {

constexpr std::size_t kWidth = 130;
constexpr std::size_t kHeight = 90;

Bytes noiseBytes(std::size_t count) {
  Bytes bytes(count);
  std::uint32_t state = 1;
  for (std::uint8_t& byte : bytes) {
    state = state * 1664525 + 1013904223;
    byte = static_cast<std::uint8_t>(state >> 24);
  }
  return bytes;
}

// Frames of rows of stride bytes after the black-and-white look: luma as it is, neutral chroma,
// bytes behind the row as they are.
Bytes greyNvFrames(Bytes frames, std::size_t stride) {
  const std::size_t frameBytes = stride * kHeight * 3 / 2;
  for (std::size_t i = 0; i < frames.size(); ++i) {
    const std::size_t row = i % frameBytes / stride;
    if (row >= kHeight && i % stride < kWidth) frames[i] = 127;
  }
  return frames;
}

class FrameTest : public ToolTest {
 protected:
  static std::vector<std::string> arguments(const char* format,
                                            std::vector<std::string> more = {}) {
    std::vector<std::string> all = {"frame", "--look", "heibai", "--format",
                                    format,  "--size", "130x90"};
    all.insert(all.end(), more.begin(), more.end());
    return all;
  }
};

TEST_F(FrameTest, ManyFramesThroughAPipe) {
  for (const std::string format : {"nv21", "nv12"}) {
    const Bytes frames = noiseBytes(7 * kWidth * kHeight * 3 / 2);
    writeFile("in", frames);
    const ToolResult result = runShell("cat in | \"$LUMORA\" frame --look heibai --format " +
                                       format + " --size 130x90 | cat > out");
    EXPECT_EQ(result.standardError, "");
    // Nothing but the frames: the library prints two lines around the four-threaded NV12 step.
    EXPECT_EQ(readFile("out"), greyNvFrames(frames, kWidth)) << format;
  }
}

TEST_F(FrameTest, VerboseKeepsStandardOutputPure) {
  const Bytes frames = noiseBytes(kWidth * kHeight * 3);
  writeFile("in", frames);
  const ToolResult result = run(arguments("nv12", {"--verbose"}), "in");
  ASSERT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.standardOutput, greyNvFrames(frames, kWidth));
  EXPECT_NE(result.standardError.find("Before FilterProcessNV12_multiThred!"), std::string::npos);
  EXPECT_NE(result.standardError.find("2 frames"), std::string::npos);
}

TEST_F(FrameTest, StrideKeepsTheBytesBehindTheRows) {
  const std::size_t stride = 160;
  const Bytes frames = noiseBytes(2 * stride * kHeight * 3 / 2);
  writeFile("in", frames);
  const ToolResult result = run(arguments("nv21", {"--stride", "160", "in", "out"}));
  ASSERT_EQ(result.exitCode, 0) << result.standardError;
  EXPECT_EQ(readFile("out"), greyNvFrames(frames, stride));
}

TEST_F(FrameTest, RgbaFramesAndOneThreadGiveTheSame) {
  const Bytes frame = noiseBytes(4 * kWidth * kHeight);
  writeFile("in", frame);
  const ToolResult four = run(arguments("rgba"), "in");
  const ToolResult one = run(arguments("rgba", {"--single-thread"}), "in");
  ASSERT_EQ(four.exitCode, 0) << four.standardError;
  EXPECT_EQ(four.standardOutput, one.standardOutput);
  ASSERT_EQ(four.standardOutput.size(), frame.size());
  for (std::size_t i = 0; i < frame.size(); i += 4) {
    const int grey = (19 * frame[i] + 38 * frame[i + 1] + 7 * frame[i + 2] + 32) >> 6;
    const Bytes expected = {static_cast<std::uint8_t>(grey), static_cast<std::uint8_t>(grey),
                            static_cast<std::uint8_t>(grey), frame[i + 3]};
    ASSERT_TRUE(std::equal(expected.begin(), expected.end(),
                           four.standardOutput.begin() + static_cast<std::ptrdiff_t>(i)))
        << "pixel " << i / 4;
  }
}

TEST_F(FrameTest, AShortLastFrameIsAnError) {
  const std::size_t frameBytes = kWidth * kHeight * 3 / 2;
  writeFile("in", noiseBytes(2 * frameBytes + 100));

  const ToolResult piped = run(arguments("nv21"), "in");
  EXPECT_EQ(piped.exitCode, 1);
  EXPECT_EQ(piped.standardOutput.size(), 2 * frameBytes);
  EXPECT_NE(piped.standardError.find("frame 3 is cut short: 100 of 17550 bytes"),
            std::string::npos);

  EXPECT_EQ(run(arguments("nv21", {"in", "out"})).exitCode, 1);
  EXPECT_EQ(listFolder(), std::vector<std::string>{"in"});
}

TEST_F(FrameTest, AnInterruptLeavesNothingHalfWritten) {
  int pipe = -1;
  const pid_t tool = start(arguments("nv21", {"-", "out"}), pipe);
  ASSERT_GT(tool, 0);
  // The second frame fits into the pipe only after the first was read; the output exists then.
  const Bytes frame = noiseBytes(kWidth * kHeight * 3 / 2);
  for (int i = 0; i < 8; ++i) {
    ASSERT_EQ(::write(pipe, frame.data(), frame.size()), static_cast<ssize_t>(frame.size()));
  }
  EXPECT_EQ(listFolder().size(), 1u);
  ASSERT_EQ(::kill(tool, SIGINT), 0);
  int status = 0;
  ASSERT_EQ(::waitpid(tool, &status, 0), tool);
  ::close(pipe);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGINT);
  EXPECT_EQ(listFolder(), std::vector<std::string>{});
}

}  // namespace
}  // namespace lumora::test
