// The steps of the pyramid against the plain ones, at every vector level and thread count.
#include <gtest/gtest.h>

#include "effects/binomial_blur.h"
#include "effects/down_sample.h"
#include "effects/pyramid_memory.h"
#include "effects/pyramid_reference.h"
#include "effects/up_scale.h"
#include "support/captured_log.h"
#include "support/thread_faults.h"

namespace lumora::test {
namespace {

constexpr Threads kThreads[] = {Threads::kCaller, Threads::kFour};

#ifdef LUMORA_REDUCED_TESTS
constexpr int kSizeStep = 17;
#else
constexpr int kSizeStep = 3;
#endif

struct PictureSize {
  PixelFormat format;
  int width, height;
  int levels;
};

// Both parities of every level up to the third, and the glow's deepest reductions.
std::vector<PictureSize> pictureSizes() {
  std::vector<PictureSize> sizes;
  int levels = 1;
  for (int width = 88; width <= 140; width += kSizeStep) {
    for (const int height : {88, 89, 91, 103, 121, 128, 139}) {
      sizes.push_back({PixelFormat::kRgba, width, height, levels});
      sizes.push_back({PixelFormat::kNv12, width & ~1, height & ~1, levels});
      levels = levels % 3 + 1;
    }
  }
  sizes.push_back({PixelFormat::kRgba, 1061, 1025, 5});
  sizes.push_back({PixelFormat::kNv21, 1026, 1038, 5});
  return sizes;
}

class PyramidAtLevel : public testing::TestWithParam<int> {
 protected:
  ForcedLevel level_{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Levels, PyramidAtLevel, testing::ValuesIn(supportedLevels()));

TEST_P(PyramidAtLevel, ReducesLikeThePlainSteps) {
  for (const PictureSize& size : pictureSizes()) {
    const TestPicture picture(size.format, size.width, size.height, 5);
    const Planes expected = referenceReduce(picture.view(), size.levels);
    for (const Threads threads : kThreads) {
      Bytes block(3 * static_cast<std::size_t>(size.width) * size.height);
      const PyramidMemory memory(picture.view(), size.levels, block.data());
      ASSERT_EQ(DownSample(picture.view(), size.levels, memory.reduced, memory.rows, threads),
                Status::kOk);
      ASSERT_TRUE(std::equal(expected.bytes.begin(), expected.bytes.end(), memory.reduced.data))
          << size.width << " x " << size.height << ", level " << size.levels;
    }
  }
}

// Every third mask byte is an end of the scale, and some vectors hold nothing but one end.
Bytes mixedMask(int width, int height) {
  Bytes mask(static_cast<std::size_t>(width * height));
  Noise noise(5);
  for (std::size_t i = 0; i < mask.size(); ++i) {
    const std::uint8_t ends[] = {0, 255, noise.byte()};
    mask[i] = ends[i / 97 % 4 == 3 ? noise.next() % 3 : i / 97 % 4 % 3];
  }
  return mask;
}

TEST_P(PyramidAtLevel, GrowsLikeThePlainSteps) {
  for (const PictureSize& size : pictureSizes()) {
    const TestPicture original(size.format, size.width, size.height, 3);
    const Planes small =
        noisePlanes(levelExtent(size.width, size.levels), levelExtent(size.height, size.levels), 9);
    for (const Bytes& mask : {mixedMask(size.width, size.height), Bytes()}) {
      TestPicture expected(size.format, size.width, size.height, 3);
      referenceGrow(small, size.levels, expected.view(), mask, 19);
      for (const Threads threads : kThreads) {
        TestPicture picture(size.format, size.width, size.height, 3);
        Bytes block(3 * static_cast<std::size_t>(size.width) * size.height);
        const PyramidMemory memory(picture.view(), size.levels, block.data());
        std::copy(small.bytes.begin(), small.bytes.end(), memory.smoothed.data);
        const Mix mix{mask.empty() ? nullptr : mask.data(), 19};
        ASSERT_EQ(
            ImUpScale(memory.smoothed, size.levels, picture.view(), mix, memory.rows, threads),
            Status::kOk);
        ASSERT_TRUE(picture.equals(expected.snapshot()))
            << size.width << " x " << size.height << ", level " << size.levels << ": "
            << picture.difference(expected.snapshot());
      }
    }
  }
}

TEST_P(PyramidAtLevel, MasksOfOneEndTakeOnePictureWhole) {
  for (const PixelFormat format : kFormats) {
    TestPicture picture(format, 98, 90);
    const Bytes before = picture.snapshot();
    Bytes block(3 * 98 * 90);
    const PyramidMemory memory(picture.view(), 1, block.data());
    std::fill_n(memory.smoothed.data, memory.smoothed.bytes(), std::uint8_t{200});
    Bytes mask(98 * 90, 0);
    const auto grow = [&] {
      return ImUpScale(memory.smoothed, 1, picture.view(), {mask.data(), 0}, memory.rows,
                       Threads::kCaller);
    };
    ASSERT_EQ(grow(), Status::kOk);
    EXPECT_TRUE(picture.equals(before)) << picture.difference(before);
    std::fill(mask.begin(), mask.end(), std::uint8_t{255});
    ASSERT_EQ(grow(), Status::kOk);
    for (std::size_t i = 0; i < before.size(); ++i) {
      const bool isAlpha = format == PixelFormat::kRgba && i % 4 == 3;
      ASSERT_EQ(picture.data()[i], isAlpha ? before[i] : 200) << "byte " << i;
    }
  }
}

TEST(Pyramid, FirstLevelOfRgbaKeepsEverySecondPixel) {
  const TestPicture picture(PixelFormat::kRgba, 90, 88);
  Bytes block(3 * 90 * 88);
  const PyramidMemory memory(picture.view(), 1, block.data());
  ASSERT_EQ(DownSample(picture.view(), 1, memory.reduced, memory.rows, Threads::kCaller),
            Status::kOk);
  EXPECT_EQ(memory.reduced.row(0, 10)[7], picture.view().row(20)[4 * 15]);
  EXPECT_EQ(memory.reduced.row(2, 43)[44], picture.view().row(86)[4 * 89 + 2]);
}

TEST(Pyramid, LevelExtentsAreRoundedUp) {
  EXPECT_EQ(levelExtent(1920, 1), 960);
  EXPECT_EQ(levelExtent(1000, 2), 250);
  EXPECT_EQ(levelExtent(1001, 2), 251);
  EXPECT_EQ(levelExtent(20000, kMaxLevels), 40);
}

TEST(Pyramid, BinomialBlurMirrorsAtTheEdges) {
  for (const auto& [width, height] : {std::pair{22, 35}, {37, 22}, {2, 2}}) {
    Planes in = noisePlanes(width, height, 3);
    Planes out(width, height);
    Blur3x3Planes(in.view(), out.view());
    EXPECT_EQ(out.bytes, referenceBlur3x3(in).bytes);
    EXPECT_EQ(out.at(1, 0, 0),
              4 * (in.at(1, 0, 0) + in.at(1, 1, 0) + in.at(1, 0, 1) + in.at(1, 1, 1)) >> 4);
  }
}

struct FormatMessage {
  PixelFormat format;
  const char* message;
};

TEST(Pyramid, ReportsWorkersOfTheReductionThatDoNotStart) {
  for (const FormatMessage& c :
       {FormatMessage{PixelFormat::kRgba, "[%s] DownSampleRGBA2RGB_multiThread failed!\n"},
        {PixelFormat::kNv21, "[%s] DownSampleNV21_NV12_firstLevel_multiThread failed!\n"}}) {
    const TestPicture picture(c.format, 96, 88);
    Bytes block(3 * 96 * 88);
    const PyramidMemory memory(picture.view(), 2, block.data());
    const CapturedLog log;
    const ThreadFaults faults(0b0100);
    EXPECT_EQ(DownSample(picture.view(), 2, memory.reduced, memory.rows, Threads::kFour),
              Status::kThreadFailed);
    EXPECT_EQ(log.errors(),
              (std::vector<std::string>{kThreadFailure, "[%s]  Error threadID = %d!", c.message}));
  }
}

}  // namespace
}  // namespace lumora::test
