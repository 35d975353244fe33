// The mosaic against block means by brute force.
#include "effects/mosaic.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "support/captured_log.h"
#include "support/test_handle.h"
#include "support/thread_faults.h"

namespace lumora::test {
namespace {

#if defined(LUMORA_REDUCED_TESTS)
constexpr int kSizeStep = 5;
constexpr int kTallSizes[] = {258, 600};
#else
constexpr int kSizeStep = 1;
constexpr int kTallSizes[] = {255, 256, 257, 258, 259, 515, 600, 1099};
#endif

// One block of one plane of `channels` samples: the mean of the untouched samples goes along its
// first row, which is then copied, `copiedBytes` long, over the others. Alpha is not averaged.
struct PlaneBlock {
  std::uint8_t* corner;
  const std::uint8_t* untouched;
  std::ptrdiff_t stride;
  int channels, width, height, copiedBytes;
};

void fillBlock(const PlaneBlock& block) {
  if (block.width == 0 || block.height == 0) return;
  for (int c = 0; c < std::min(block.channels, 3); ++c) {
    std::uint64_t sum = 0;
    for (int y = 0; y < block.height; ++y) {
      for (int x = 0; x < block.width; ++x) {
        sum += block.untouched[y * block.stride + x * block.channels + c];
      }
    }
    const auto mean = sum / static_cast<std::uint64_t>(block.width * block.height);
    for (int x = 0; x < block.width; ++x) {
      block.corner[x * block.channels + c] = static_cast<std::uint8_t>(mean);
    }
  }
  for (int y = 1; y < block.height; ++y) {
    std::memcpy(block.corner + y * block.stride, block.corner,
                static_cast<std::size_t>(block.copiedBytes));
  }
}

// Block after block: an odd block's chroma copies a byte of the block to its right, or of the gap.
void referenceMosaic(const TestPicture& test, const MosaicRect& rect, int size) {
  const Picture& picture = test.view();
  const Bytes untouched = test.snapshot();
  const int channels = picture.isRgba() ? 4 : 1;
  const auto fill = [&](std::uint8_t* corner, int samples, int width, int height, int copiedBytes) {
    fillBlock({corner, untouched.data() + (corner - picture.data), picture.strideBytes, samples,
               width, height, copiedBytes});
  };
  for (int y = rect.top; y < rect.bottom; y += size) {
    for (int x = rect.left; x < rect.right; x += size) {
      const int width = std::min(size, rect.right - x), height = std::min(size, rect.bottom - y);
      fill(picture.row(y) + x * channels, channels, width, height, width * channels);
      if (picture.isRgba()) continue;
      const int chromaX = rect.left / 2 + (x - rect.left) / 2;
      const int chromaY = rect.top / 2 + (y - rect.top) / 2;
      fill(picture.chroma() + chromaY * picture.strideBytes + 2 * chromaX, 2, width / 2, height / 2,
           width);
    }
  }
}

Status runMosaic(const Picture& picture, const MosaicRect& rect, int size, Threads threads) {
  TestAllocator allocator;
  const Status status = FilterMosaic(picture, rect, size, *allocator.record(), threads);
  EXPECT_TRUE(allocator.balanced());
  return status;
}

// Both forms on copies of one picture.
void expectBlocks(PixelFormat format, int width, int height, const MosaicRect& rect, int size) {
  TestPicture reference(format, width, height, 5, 3);
  TestPicture one(format, width, height, 5, 3), four(format, width, height, 5, 3);
  referenceMosaic(reference, rect, size);
  ASSERT_EQ(runMosaic(one.view(), rect, size, Threads::kCaller), Status::kOk);
  ASSERT_EQ(runMosaic(four.view(), rect, size, Threads::kFour), Status::kOk);
  const Bytes expected = reference.snapshot();
  ASSERT_TRUE(one.equals(expected)) << size << ": " << one.difference(expected);
  ASSERT_TRUE(four.equals(expected)) << size << ": " << four.difference(expected);
}

class Mosaic : public testing::TestWithParam<int> {
 protected:
  ForcedLevel level_{GetParam()};
};

TEST_P(Mosaic, TakesTheTruncatedMean) {
  TestPicture picture(PixelFormat::kRgba, 16, 16);
  for (int y = 0; y < 16; ++y) {
    for (int x = 0; x < 16; ++x) {
      std::uint8_t* const pixel = picture.view().row(y) + 4 * x;
      // A ramp of 0..63 in every block, whose mean is 31.5, and blocks apart in green.
      pixel[0] = static_cast<std::uint8_t>(y % 8 * 8 + x % 8);
      pixel[1] = static_cast<std::uint8_t>(x < 8 ? 10 : 20);
      pixel[2] = 255;
      pixel[3] = static_cast<std::uint8_t>(16 * y + x);
    }
  }
  ASSERT_EQ(runMosaic(picture.view(), {0, 0, 16, 16}, 8, Threads::kFour), Status::kOk);
  for (int y = 0; y < 16; ++y) {
    for (int x = 0; x < 16; ++x) {
      const std::uint8_t* const pixel = picture.view().row(y) + 4 * x;
      EXPECT_EQ(pixel[0], 31);
      EXPECT_EQ(pixel[1], x < 8 ? 10 : 20);
      EXPECT_EQ(pixel[2], 255);
      // Alpha comes from the first row of the block.
      EXPECT_EQ(pixel[3], 16 * (y / 8 * 8) + x);
    }
  }
}

TEST_P(Mosaic, FillsEveryBlockOfEverySizeWithItsMean) {
  // Even sides and places, as calls have them; all remainders, 1 among them.
  const MosaicRect rects[] = {{0, 0, 8, 8},   {2, 4, 12, 12}, {2, 2, 12, 12}, {6, 0, 26, 20},
                              {0, 2, 10, 42}, {4, 6, 52, 14}, {0, 0, 62, 60}, {14, 10, 62, 60}};
  for (const PixelFormat format : kFormats) {
    for (const MosaicRect& rect : rects) {
      const int longest = std::min(rect.right - rect.left, rect.bottom - rect.top);
      for (int size = 8; size <= longest; size += size > 12 ? kSizeStep : 1) {
        expectBlocks(format, 62, 60, rect, size);
      }
    }
  }
}

// More rows than a 16-bit sum holds, in one stripe and across stripes.
TEST_P(Mosaic, SumsTallBlocks) {
  for (const PixelFormat format : kFormats) {
    for (const int size : kTallSizes) {
      expectBlocks(format, 1100, 1400, {0, 2, 1100, 1400}, size);
    }
  }
}

TEST_P(Mosaic, KeepsTheBrightestPictureBright) {
  for (const PixelFormat format : kFormats) {
    TestPicture picture(format, 2000, 2000);
    picture.fill(255, 255, 255);
    const Bytes white = picture.snapshot();
    for (const int size : {16, 1999, 2000}) {
      for (const Threads threads : {Threads::kCaller, Threads::kFour}) {
        ASSERT_EQ(runMosaic(picture.view(), {0, 0, 2000, 2000}, size, threads), Status::kOk);
        ASSERT_TRUE(picture.equals(white)) << size << ": " << picture.difference(white);
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Levels, Mosaic, testing::ValuesIn(supportedLevels()),
                         [](const auto& level) { return vectorLevelName(level.param); });

TEST(MosaicRectangle, MayHaveItsCornersExchanged) {
  TestPicture plain(PixelFormat::kRgba, 40, 40), exchanged(PixelFormat::kRgba, 40, 40);
  ASSERT_EQ(runMosaic(plain.view(), {4, 6, 30, 36}, 9, Threads::kCaller), Status::kOk);
  ASSERT_EQ(runMosaic(exchanged.view(), {30, 36, 4, 6}, 9, Threads::kCaller), Status::kOk);
  EXPECT_TRUE(exchanged.equals(plain.snapshot()));
}

struct FormCase {
  PixelFormat format;
  Threads threads;
  std::vector<std::uint32_t> requests;  // for a rectangle of 20 x 10
};

const FormCase kForms[] = {
    {PixelFormat::kRgba, Threads::kFour, {3 * 21 * 11 * 4 + 16, 3 * 20 * 10 + 16}},
    {PixelFormat::kRgba, Threads::kCaller, {3 * 21 * 11 * 4 + 32, 3 * 20 * 10 + 32}},
    {PixelFormat::kNv21, Threads::kFour, {(21 * 11 + 2 * 11 * 6) * 4 + 16, 20 * 10 * 3 / 2 + 16}},
    {PixelFormat::kNv12, Threads::kCaller, {(21 * 11 + 2 * 11 * 6) * 4 + 16, 20 * 10 * 3 / 2 + 16}},
};

TEST(MosaicMemory, IsRequestedAsHostsReckonWithAndMayFail) {
  for (const FormCase& form : kForms) {
    for (int failing = 0; failing <= 2; ++failing) {
      TestPicture picture(form.format, 40, 40);
      const Bytes before = picture.snapshot();
      TestAllocator allocator;
      allocator.failAt(failing);
      const CapturedLog log;
      const Status status =
          FilterMosaic(picture.view(), {2, 4, 22, 14}, 9, *allocator.record(), form.threads);
      EXPECT_TRUE(allocator.balanced());
      auto requests = form.requests;
      if (failing == 0) {
        EXPECT_EQ(status, Status::kOk);
        EXPECT_TRUE(log.errors().empty());
      } else {
        EXPECT_EQ(status, Status::kNoMemory);
        EXPECT_TRUE(picture.equals(before));
        EXPECT_EQ(log.errors(), std::vector<std::string>{"[%s] can't malloc enough memory!\n"});
        requests.resize(static_cast<std::size_t>(failing));
      }
      EXPECT_EQ(allocator.requests(), requests);
    }
  }
}

TEST(MosaicThreads, LeaveThePictureUntouchedWhenOneIsMissing) {
  for (const PixelFormat format : kFormats) {
    for (const unsigned missing : {1u, 2u, 4u, 8u, 15u}) {
      TestPicture picture(format, 40, 40);
      const Bytes before = picture.snapshot();
      TestAllocator allocator;
      const ThreadFaults faults(missing);
      const CapturedLog log;
      EXPECT_EQ(
          FilterMosaic(picture.view(), {0, 0, 40, 40}, 8, *allocator.record(), Threads::kFour),
          Status::kThreadFailed);
      EXPECT_EQ(ThreadFaults::startCount(), 4);
      EXPECT_TRUE(picture.equals(before));
      EXPECT_TRUE(allocator.balanced());
      const auto errors = log.errors();
      EXPECT_EQ(errors.front(), "[%s] pthread_create error!\n");
      EXPECT_EQ(errors.back(), "[%s] IntegralMat_multi return error!\n");
      EXPECT_EQ(errors.size(), missing == 15u ? 6u : 3u);
    }
  }
}

// The whole call: what fails inside is logged, and hosts get 0.
class MosaicCall : public testing::Test {
 protected:
  std::uint32_t process(int strength) {
    FilterProcessParam param{};
    param.rectX = 10;
    param.rectY = 20;
    param.rectWidth = 50;
    param.rectHeight = 40;
    param.mosaicSize = 8;
    param.eMode = LUMORA_MODE_MOSAIC;
    param.effectRatio = strength;
    const FilterImage image = picture_.image();
    return filterProcess(handle_.get(), &image, &param);
  }

  TestAllocator allocator_;
  TestHandle handle_{allocator_, {}};
  TestPicture picture_{PixelFormat::kNv12, 96, 88};
};

TEST_F(MosaicCall, SucceedsWhateverHappensInside) {
  const Bytes before = picture_.snapshot();
  const CapturedLog log;
  allocator_.failAt(1);
  EXPECT_EQ(process(16), 0u);
  allocator_.failAt(2);
  EXPECT_EQ(process(16), 0u);
  EXPECT_EQ(log.errors().size(), 2u);
  {
    const ThreadFaults faults(4);
    EXPECT_EQ(process(16), 0u);
  }
  EXPECT_TRUE(picture_.equals(before));
  EXPECT_EQ(process(16), 0u);
  EXPECT_FALSE(picture_.equals(before));
  EXPECT_EQ(allocator_.liveBlocks(), 1);  // the handle
}

TEST_F(MosaicCall, IsBlendedWithThePictureBelowFullStrength) {
  const Bytes before = picture_.snapshot();
  TestPicture full(PixelFormat::kNv12, 96, 88);
  referenceMosaic(full, {10, 20, 60, 60}, 8);
  EXPECT_EQ(process(0), 0u);
  Bytes expected = full.snapshot();
  for (std::size_t i = 0; i < expected.size(); ++i) {
    expected[i] = static_cast<std::uint8_t>((before[i] * 8 + expected[i] * 8 + 8) >> 4);
  }
  EXPECT_TRUE(picture_.equals(expected)) << picture_.difference(expected);
}

}  // namespace
}  // namespace lumora::test
