// Resampling by both rules: worked values, and agreement with the plain formulas.
#include <gtest/gtest.h>

#include <cstring>

#include "resources/resample.h"
#include "support/captured_log.h"
#include "support/test_picture.h"
#include "support/thread_faults.h"

namespace lumora::test {
namespace {

struct Sizes {
  int srcWidth, srcHeight, dstWidth, dstHeight;
};

// Stretched, shrunk and mixed; narrower than a vector; wider than what is gathered in one piece
// (12288 bytes); steps that divide evenly and steps that do not.
constexpr Sizes kSizes[] = {
    {1, 1, 1, 1},          {1, 1, 40, 3},         {16, 16, 16, 16},    {16, 4, 17, 5},
    {15, 7, 333, 29},      {17, 12, 8, 6},        {48, 27, 24, 13},    {48, 27, 48, 27},
    {17, 12, 16, 11},      {1024, 64, 1920, 101}, {1024, 64, 1023, 9}, {1024, 1024, 88, 88},
    {1024, 31, 1280, 720}, {512, 30, 4000, 61},   {512, 7, 4099, 15},  {1024, 3, 13001, 2},
    {1024, 20, 20000, 5},  {20000, 3, 20000, 4},  {20000, 5, 88, 90},  {333, 217, 341, 1},
    {640, 480, 1280, 960}, {341, 100, 1024, 300}, {3000, 40, 3001, 2}, {88, 20000, 90, 88},
};

Bytes noise(std::size_t bytes) {
  Bytes result(bytes);
  Noise source(7);
  for (std::uint8_t& byte : result) byte = source.byte();
  return result;
}

int stepOf(int srcCount, int dstCount) {
  return static_cast<int>(static_cast<float>(srcCount * 1024) / static_cast<float>(dstCount));
}

// Positions in 1/1024 pixel, added up from 0 in every row.
Bytes fixedPointReference(const Bytes& src, int format, const Sizes& s) {
  const int stepX = stepOf(s.srcWidth, s.dstWidth);
  const int stepY = stepOf(s.srcHeight, s.dstHeight);
  Bytes dst;
  for (int y = 0; y < s.dstHeight; ++y) {
    const std::size_t row = static_cast<std::size_t>(y * stepY >> 10) * s.srcWidth;
    for (int x = 0, position = 0; x < s.dstWidth; ++x, position += stepX) {
      const auto pixel =
          src.begin() + static_cast<std::ptrdiff_t>((row + (position >> 10)) * format);
      dst.insert(dst.end(), pixel, pixel + format);
    }
  }
  return dst;
}

Bytes floatReference(const Bytes& src, const Sizes& s) {
  const float ratioX = static_cast<float>(s.srcWidth) / static_cast<float>(s.dstWidth);
  const float ratioY = static_cast<float>(s.srcHeight) / static_cast<float>(s.dstHeight);
  Bytes dst;
  for (int y = 0; y < s.dstHeight; ++y) {
    const auto row = static_cast<std::size_t>(static_cast<float>(y) * ratioY);
    for (int x = 0; x < s.dstWidth; ++x) {
      dst.push_back(
          src[row * s.srcWidth + static_cast<std::size_t>(static_cast<float>(x) * ratioX)]);
    }
  }
  return dst;
}

// Runs a resize from and into memory that ends at inaccessible pages.
template <class Resize>
Bytes inGuardedMemory(const Bytes& src, const Sizes& s, int format, Resize resize) {
  const GuardedBuffer from(src.size());
  const GuardedBuffer to(static_cast<std::size_t>(s.dstWidth) * s.dstHeight * format);
  std::memcpy(from.data(), src.data(), src.size());
  std::memset(to.data(), 0xEE, to.size());
  resize(from.data(), to.data());
  EXPECT_TRUE(to.isIntact());
  return {to.data(), to.data() + to.size()};
}

class Resample : public testing::TestWithParam<int> {
  const ForcedLevel level_{GetParam()};
};
INSTANTIATE_TEST_SUITE_P(Levels, Resample, testing::ValuesIn(supportedLevels()),
                         [](const auto& item) { return vectorLevelName(item.param); });

TEST_P(Resample, FollowsTheFixedPointRule) {
  for (const Sizes& s : kSizes) {
    for (const int format : {kFormatGray, kFormatRGB}) {
      SCOPED_TRACE(testing::Message() << s.srcWidth << 'x' << s.srcHeight << " to " << s.dstWidth
                                      << 'x' << s.dstHeight << " format " << format);
      const Bytes src = noise(static_cast<std::size_t>(s.srcWidth) * s.srcHeight * format);
      const Bytes expected = fixedPointReference(src, format, s);
      EXPECT_EQ(inGuardedMemory(src, s, format,
                                [&](const std::uint8_t* from, std::uint8_t* to) {
                                  EXPECT_EQ(MixImgResize(format, s.srcWidth, s.srcHeight,
                                                         s.dstWidth, s.dstHeight, from, to),
                                            Status::kOk);
                                }),
                expected);
      const auto onCaller = format == kFormatGray ? MixImgResizeGray : MixImgResizeRGB;
      EXPECT_EQ(inGuardedMemory(src, s, format,
                                [&](const std::uint8_t* from, std::uint8_t* to) {
                                  onCaller(s.srcWidth, s.srcHeight, s.dstWidth, s.dstHeight, from,
                                           to);
                                }),
                expected);
    }
  }
}

TEST_P(Resample, FollowsTheFloatingPointRule) {
  for (const Sizes& s : kSizes) {
    SCOPED_TRACE(testing::Message()
                 << s.srcWidth << 'x' << s.srcHeight << " to " << s.dstWidth << 'x' << s.dstHeight);
    const Bytes src = noise(static_cast<std::size_t>(s.srcWidth) * s.srcHeight);
    EXPECT_EQ(inGuardedMemory(src, s, kFormatGray,
                              [&](const std::uint8_t* from, std::uint8_t* to) {
                                ImResizeNearest(s.srcWidth, s.srcHeight, s.dstWidth, s.dstHeight,
                                                from, to);
                              }),
              floatReference(src, s));
  }
}

// Widths around the vector's and every phase of a row's last block.
TEST_P(Resample, GathersEveryWidth) {
  for (int width = 1; width <= 100; ++width) {
    for (const int srcWidth : {5, 16, 21, 48}) {
      const Sizes s = {srcWidth, 2, width, 2};
      const Bytes src = noise(static_cast<std::size_t>(srcWidth) * 2 * 3);
      const auto resize = [&](const std::uint8_t* from, std::uint8_t* to) {
        MixImgResizeRGB(srcWidth, 2, width, 2, from, to);
      };
      ASSERT_EQ(inGuardedMemory(src, s, kFormatRGB, resize),
                fixedPointReference(src, kFormatRGB, s))
          << srcWidth << " to " << width;
    }
  }
}

TEST(ResampleRules, TakeTheWorkedPixels) {
  // Steps of 546 and 970: the last pixel of 1920 x 1080 shows (1023, 1022).
  Bytes src(1024 * 1024, 0);
  src[1022 * 1024 + 1023] = 200;
  Bytes dst(1920 * 1080);
  MixImgResizeGray(1024, 1024, 1920, 1080, src.data(), dst.data());
  EXPECT_EQ(dst.back(), 200);

  // Pixel 15 of 1920 lies at 8 of 1024: the truncated step of the fixed-point rule falls short.
  Bytes ramp(1024);
  for (int i = 0; i < 1024; ++i) ramp[i] = static_cast<std::uint8_t>(i);
  Bytes fixedPoint(1920), floating(1920);
  MixImgResizeGray(1024, 1, 1920, 1, ramp.data(), fixedPoint.data());
  ImResizeNearest(1024, 1, 1920, 1, ramp.data(), floating.data());
  EXPECT_EQ(fixedPoint[15], 7);
  EXPECT_EQ(floating[15], 8);
}

TEST(ResampleEdges, EmptySourcesGiveZerosAndEmptyDestinationsNothing) {
  Bytes dst(12, 0xEE);
  ImResizeNearest(1, 0, 4, 3, nullptr, dst.data());
  EXPECT_EQ(dst, Bytes(12, 0));
  dst.assign(12, 0xEE);
  ASSERT_EQ(MixImgResize(kFormatRGB, 0, 0, 2, 2, nullptr, dst.data()), Status::kOk);
  EXPECT_EQ(dst, Bytes(12, 0));

  const Bytes src(9, 5);
  dst.assign(12, 0xEE);
  ImResizeNearest(3, 3, 0, 4, src.data(), dst.data());
  ImResizeNearest(3, 3, 4, 0, src.data(), dst.data());
  ASSERT_EQ(MixImgResize(kFormatGray, 3, 3, 4, 0, src.data(), dst.data()), Status::kOk);
  // A format of another number copies nothing.
  ASSERT_EQ(MixImgResize(2, 3, 3, 2, 2, src.data(), dst.data()), Status::kOk);
  EXPECT_EQ(dst, Bytes(12, 0xEE));
}

// Five rows are shares of 2, 2, 1 and 0 rows.
TEST(ResampleThreads, AMissingWorkerLeavesItsRowsAlone) {
  const Bytes src(4, 9);
  Bytes dst(10, 0xEE);
  const CapturedLog log;
  const ThreadFaults faults(1u << 1 | 1u << 3);
  EXPECT_EQ(MixImgResize(kFormatGray, 2, 2, 2, 5, src.data(), dst.data()), Status::kThreadFailed);
  EXPECT_EQ(dst, (Bytes{9, 9, 9, 9, 0xEE, 0xEE, 0xEE, 0xEE, 9, 9}));
  ASSERT_EQ(log.lines().size(), 3u);
  EXPECT_EQ(log.lines()[0].format, "[%s] pthread_create error!\n");
  EXPECT_EQ(log.lines()[1].text, "[FILTER_LOG]  Error threadID = 1!");
  EXPECT_EQ(log.lines()[2].text, "[FILTER_LOG]  Error threadID = 3!");
}

}  // namespace
}  // namespace lumora::test
