// Resampling by both rules: worked values, and agreement with the plain formulas.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

#include "resources/resample.h"
#include "resources/resample_reference.h"
#include "resources/stretched_texture.h"

namespace lumora::test {
namespace {

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

// Those, and widths around the vector's with every phase of a row's last block.
std::vector<Sizes> allSizes() {
  std::vector<Sizes> all(std::begin(kSizes), std::end(kSizes));
  for (int width = 1; width <= 100; ++width) {
    for (const int srcWidth : {5, 16, 21, 48}) all.push_back({srcWidth, 2, width, 2});
  }
  return all;
}

ResizeStripe wholePicture(int format, const Sizes& s, const std::uint8_t* src, std::uint8_t* dst) {
  return {src, dst, s.srcWidth, s.srcHeight, s.dstWidth, s.dstHeight, 0, s.dstHeight, format};
}

using Resize = void (*)(const Sizes& s, const std::uint8_t* src, std::uint8_t* dst);

// In shares, of which one or two may be empty.
template <int kFormat>
void inStripes(const Sizes& s, const std::uint8_t* src, std::uint8_t* dst) {
  const ResizeStripe whole = wholePicture(kFormat, s, src, dst);
  for (const Stripe& rows : splitRows(s.dstHeight)) MixImgResizeStripe(rowsOf(whole, rows));
}

// Row after row as walks ask for them, in memory of the size that they have for it.
template <int kFormat, int kRowsAtOnce>
void asAsked(const Sizes& s, const std::uint8_t* src, std::uint8_t* dst) {
  const std::size_t rowBytes = static_cast<std::size_t>(s.dstWidth) * kFormat;
  const GuardedBuffer memory(Bytes(rowBytes * std::max(s.dstHeight, 88)));
  StretchedTexture texture(kFormat, {s.srcWidth, s.srcHeight}, src, {s.dstWidth, s.dstHeight},
                           kRowsAtOnce, memory.data());
  const TextureSource source = texture.source();
  const Stripes stripes = splitRowPairs(s.dstHeight + s.dstHeight % 2);
  for (std::size_t k = 0; k < stripes.size(); ++k) {
    const auto end = std::min<std::int64_t>(stripes[k].first + stripes[k].count, s.dstHeight);
    for (std::int64_t y = stripes[k].first; y < end; y += kRowsAtOnce) {
      const std::uint8_t* rows[kRowsAtOnce];
      const auto count = std::min<std::int64_t>(kRowsAtOnce, end - y);
      for (int i = 0; i < count; ++i) rows[i] = source.makers[k]->row(static_cast<int>(y) + i);
      for (int i = 0; i < count; ++i) {
        std::copy_n(rows[i], rowBytes, dst + static_cast<std::size_t>(y + i) * rowBytes);
      }
    }
  }
  EXPECT_TRUE(memory.isIntact());
}

void nearest(const Sizes& s, const std::uint8_t* src, std::uint8_t* dst) {
  ImResizeNearest(s.srcWidth, s.srcHeight, s.dstWidth, s.dstHeight, src, dst);
}

struct Routine {
  const char* name;
  int bytesPerPixel;
  PositionRule rule;
  Resize resize;
  int narrowest = 1;  // what the memory of walks is enough for
};
constexpr Routine kRoutines[] = {
    {"one byte in stripes", 1, fixedPointPosition, inStripes<kFormatGray>},
    {"three bytes in stripes", 3, fixedPointPosition, inStripes<kFormatRGB>},
    {"one byte by rows", 1, fixedPointPosition, asAsked<kFormatGray, 1>, 88},
    {"one byte by row pairs", 1, fixedPointPosition, asAsked<kFormatGray, 2>, 88},
    {"three bytes by rows", 3, fixedPointPosition, asAsked<kFormatRGB, 1>, 88},
    {"three bytes by row pairs", 3, fixedPointPosition, asAsked<kFormatRGB, 2>, 88},
    {"nearest", 1, floatingPosition, nearest},
};

// From and into memory that ends at inaccessible pages.
void expectRule(const Routine& routine, const Sizes& s) {
  const auto bytes = [&](int width, int height) {
    return static_cast<std::size_t>(width) * height * routine.bytesPerPixel;
  };
  const GuardedBuffer src(noiseBytes(bytes(s.srcWidth, s.srcHeight), 7));
  const Bytes expected = resampled(src.data(), s, routine.bytesPerPixel, routine.rule);
  for (const int level : supportedLevels()) {
    const ForcedLevel forced(level);
    const GuardedBuffer dst(Bytes(bytes(s.dstWidth, s.dstHeight), 0xEE));
    routine.resize(s, src.data(), dst.data());
    EXPECT_TRUE(dst.isIntact());
    ASSERT_TRUE(std::equal(expected.begin(), expected.end(), dst.data()))
        << routine.name << " on " << vectorLevelName(level) << ", " << s.srcWidth << 'x'
        << s.srcHeight << " to " << s.dstWidth << 'x' << s.dstHeight;
  }
}

TEST(Resample, FollowsItsRule) {
  for (const Sizes& s : allSizes()) {
    for (const Routine& routine : kRoutines) {
      if (s.dstWidth >= routine.narrowest) expectRule(routine, s);
    }
  }
}

TEST(ResampleRules, TakeTheWorkedPixels) {
  // Steps of 546 and 970: the last pixel of 1920 x 1080 shows (1023, 1022).
  Bytes src(1024 * 1024, 0);
  src[1022 * 1024 + 1023] = 200;
  Bytes dst(1920 * 1080);
  MixImgResizeStripe(wholePicture(kFormatGray, {1024, 1024, 1920, 1080}, src.data(), dst.data()));
  EXPECT_EQ(dst.back(), 200);

  // Pixel 15 of 1920 lies at 8 of 1024: the truncated step of the fixed-point rule falls short.
  Bytes ramp(1024);
  for (int i = 0; i < 1024; ++i) ramp[i] = static_cast<std::uint8_t>(i);
  Bytes fixedPoint(1920), floating(1920);
  MixImgResizeStripe(wholePicture(kFormatGray, {1024, 1, 1920, 1}, ramp.data(), fixedPoint.data()));
  ImResizeNearest(1024, 1, 1920, 1, ramp.data(), floating.data());
  EXPECT_EQ(fixedPoint[15], 7);
  EXPECT_EQ(floating[15], 8);
}

TEST(ResampleEdges, EmptySourcesGiveZerosAndEmptyDestinationsNothing) {
  Bytes dst(12, 0xEE);
  ImResizeNearest(1, 0, 4, 3, nullptr, dst.data());
  EXPECT_EQ(dst, Bytes(12, 0));
  dst.assign(12, 0xEE);
  MixImgResizeStripe(wholePicture(kFormatRGB, {0, 0, 2, 2}, nullptr, dst.data()));
  EXPECT_EQ(dst, Bytes(12, 0));

  const Bytes src(9, 5);
  dst.assign(12, 0xEE);
  ImResizeNearest(3, 3, 0, 4, src.data(), dst.data());
  ImResizeNearest(3, 3, 4, 0, src.data(), dst.data());
  MixImgResizeStripe(wholePicture(kFormatGray, {3, 3, 4, 0}, src.data(), dst.data()));
  // A format of another number copies nothing.
  MixImgResizeStripe(wholePicture(2, {3, 3, 2, 2}, src.data(), dst.data()));
  EXPECT_EQ(dst, Bytes(12, 0xEE));
}

}  // namespace
}  // namespace lumora::test
