// The mosaic against block means by brute force.
#include "effects/mosaic/mosaic.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstring>

#include "platform/stripe_runner.h"
#include "support/captured_log.h"
#include "support/everywhere.h"
#include "support/test_allocator.h"
#include "support/thread_faults.h"

namespace lumora::test {
namespace {

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
      block.corner[x * block.channels + c] = toByte(mean);
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

// With the n-th request for memory refused; 0 for none.
void runMosaic(const Picture& picture, const MosaicRect& rect, int size, Threads threads,
               int failingRequest = 0, int weight = 16) {
  TestAllocator allocator;
  allocator.failAt(failingRequest);
  FilterMosaic(picture, rect, size, weight, *allocator.record(), threads);
  EXPECT_TRUE(allocator.balanced());
}

void expectMosaic(const TestPicture& picture, const MosaicRect& rect, int size,
                  const TestPicture& expected) {
  SCOPED_TRACE(testing::Message() << "blocks of " << size);
  expectEverywhere(picture, expected, [&](const Picture& copy, Threads threads) {
    runMosaic(copy, rect, size, threads);
    return Status::kOk;
  });
}

void expectBlocks(PixelFormat format, int width, int height, const MosaicRect& rect, int size) {
  const TestPicture picture(format, width, height, 5, 3), expected(picture);
  referenceMosaic(expected, rect, size);
  expectMosaic(picture, rect, size, expected);
}

TEST(Mosaic, TakesTheTruncatedMean) {
  const TestPicture picture(PixelFormat::kRgba, 16, 16), expected(picture);
  for (int y = 0; y < 16; ++y) {
    for (int x = 0; x < 16; ++x) {
      // A ramp of 0..63 in every block, whose mean is 31.5, and blocks apart in green. Alpha comes
      // from the first row of the block.
      const std::uint8_t green = x < 8 ? 10 : 20;
      const std::uint8_t before[] = {toByte(y % 8 * 8 + x % 8), green, 255, toByte(16 * y + x)};
      const std::uint8_t after[] = {31, green, 255, toByte(16 * (y / 8 * 8) + x)};
      std::copy_n(before, 4, picture.view().row(y) + 4 * x);
      std::copy_n(after, 4, expected.view().row(y) + 4 * x);
    }
  }
  expectMosaic(picture, {0, 0, 16, 16}, 8, expected);
  expectMosaic(picture, {16, 16, 0, 0}, 8, expected);  // the corners exchanged
}

TEST(Mosaic, FillsEveryBlockOfEverySizeWithItsMean) {
  // Even sides and places, as calls have them; all remainders, 1 among them.
  const MosaicRect rects[] = {{0, 0, 8, 8},   {2, 4, 12, 12}, {2, 2, 12, 12}, {6, 0, 26, 20},
                              {0, 2, 10, 42}, {4, 6, 52, 14}, {0, 0, 62, 60}, {14, 10, 62, 60}};
  for (const PixelFormat format : kFormats) {
    for (const MosaicRect& rect : rects) {
      const int longest = std::min(rect.right - rect.left, rect.bottom - rect.top);
      for (int size = 8; size <= longest; size += size > 12 && kReduced ? 5 : 1) {
        expectBlocks(format, 62, 60, rect, size);
      }
    }
  }
}

// More rows than a 16-bit sum holds, and rows of several strips.
TEST(Mosaic, SumsTallAndWideBlocks) {
  for (const PixelFormat format : kFormats) {
    for (const int size : {258, 600, 11, 255, 256, 257, 259, 515, 1099}) {
      expectBlocks(format, 1100, 1400, {0, 2, 1100, 1400}, size);
      if (kReduced && size == 11) break;
    }
  }
}

TEST(Mosaic, KeepsTheBrightestPictureBright) {
  for (const PixelFormat format : kFormats) {
    TestPicture white(format, 2000, 2000);
    white.fill(255, 255, 255);
    for (const int size : {16, 1999, 2000}) expectMosaic(white, {0, 0, 2000, 2000}, size, white);
  }
}

using Messages = std::vector<std::string>;

// Blocks of every remainder, more and fewer of them than workers.
constexpr int kSizes[] = {8, 11, 13, 19, 30, 59};
constexpr MosaicRect kRect = {14, 2, 92, 84};

template <class Work>
void expectMadeAllTheSame(const Messages& messages, Work work) {
  for (const PixelFormat format : kFormats) {
    for (const int size : kSizes) {
      for (const int weight : {16, 11}) {
        SCOPED_TRACE(testing::Message()
                     << formatName(format) << ", blocks of " << size << ", weight " << weight);
        const TestPicture picture(format, 96, 90, 5, 3);
        TestPicture expected(picture);
        referenceMosaic(expected, kRect, size);
        expected.mixIn(picture, weight);
        const CapturedLog log;
        work(picture.view(), size, weight);
        EXPECT_EQ(picture.difference(expected), kNone);
        EXPECT_EQ(log.errors(), messages);
      }
    }
  }
}

TEST(Mosaic, IsMadeWithoutTheMemoryItAskedFor) {
  for (const Threads threads : kBothThreads) {
    for (const int request : {1, 2}) {
      expectMadeAllTheSame({"[%s] can't malloc enough memory!\n"},
                           [&](const Picture& p, int size, int weight) {
                             const ThreadFaults none(0);
                             runMosaic(p, kRect, size, threads, request, weight);
                             EXPECT_EQ(ThreadFaults::startCount(), 0);
                           });
    }
  }
}

TEST(Mosaic, IsMadeWhicheverWorkersAreMissing) {
  for (unsigned missing = 1; missing < 1u << kStripeCount; ++missing) {
    Messages messages = {"[%s] pthread_create error!\n"};
    messages.resize(1 + std::popcount(missing), "[%s]  Error threadID = %d!");
    messages.emplace_back("[%s] IntegralMat_multi return error!\n");
    expectMadeAllTheSame(messages, [&](const Picture& p, int size, int weight) {
      const ThreadFaults faults(missing);
      runMosaic(p, kRect, size, Threads::kFour, 0, weight);
    });
  }
}

}  // namespace
}  // namespace lumora::test
