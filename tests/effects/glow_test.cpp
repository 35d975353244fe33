// The glow look: its weights, its curve stage, and the whole of it.
#include "effects/glow.h"

#include <gtest/gtest.h>

#include "effects/pyramid_reference.h"
#include "looks/colour/colour_looks.h"
#include "support/captured_log.h"
#include "support/reference_look.h"
#include "support/thread_faults.h"

namespace lumora::test {
namespace {

TEST(Glow, WeightsRiseWithTheStrength) {
  const std::pair<int, int> weights[] = {{8, 9}, {12, 14}, {16, 19}, {17, 19}, {24, 22}, {32, 26}};
  for (const auto& [ratio, weight] : weights) EXPECT_EQ(GlowWeight(ratio), weight) << ratio;
}

TEST(Glow, HalvesByTheShorterSide) {
  const std::pair<int, int> sides[] = {{65, 1},   {88, 1},   {128, 2},  {255, 2},  {256, 2},
                                       {288, 3},  {512, 4},  {1024, 5}, {1080, 5}, {2048, 5},
                                       {2080, 6}, {4096, 6}, {4128, 7}, {8192, 8}, {20000, 9}};
  for (const auto& [side, levels] : sides) EXPECT_EQ(glowLevels(side), levels) << side;
}

// What the curve stage makes of RGBA pixels of one grey.
Colour curvesOfGrey(std::uint8_t grey, int ratio, const std::uint8_t* block = nullptr) {
  TestPicture picture(PixelFormat::kRgba, 88, 4);
  picture.fill(grey, grey, grey, 7);
  EXPECT_EQ(runLook(kMeishimenghuan(), picture.view(), {nullptr, block, ratio}, Threads::kCaller),
            Status::kOk);
  const std::uint8_t* const pixel = picture.data() + 4 * 87;
  EXPECT_EQ(pixel[3], 7);
  return {pixel[0], pixel[1], pixel[2]};
}

struct GreyCase {
  std::uint8_t grey;
  int ratio;
  Colour expected;
};

TEST(Glow, CurveStageHasItsWorkedValues) {
  const GreyCase cases[] = {
      {64, 8, {73, 69, 74}},      {128, 8, {157, 157, 157}}, {64, 16, {82, 74, 83}},
      {128, 16, {185, 185, 185}}, {64, 32, {98, 83, 100}},   {128, 32, {210, 210, 210}},
      {0, 8, {0, 0, 1}},          {0, 16, {0, 0, 2}},        {0, 32, {0, 0, 2}},
  };
  for (const int level : supportedLevels()) {
    const ForcedLevel forced(level);
    for (const GreyCase& c : cases) {
      const Colour colour = curvesOfGrey(c.grey, c.ratio);
      EXPECT_EQ(colour.r, c.expected.r) << int{c.grey} << " at " << c.ratio;
      EXPECT_EQ(colour.g, c.expected.g) << int{c.grey} << " at " << c.ratio;
      EXPECT_EQ(colour.b, c.expected.b) << int{c.grey} << " at " << c.ratio;
    }
  }
}

// Flag, two bytes that are not read, three curves.
TEST(Glow, CurveStageTakesStoredCurvesFromBehindTwoMoreBytes) {
  std::uint8_t block[75] = {0, 4, 2};
  for (int channel = 0; channel < 3; ++channel) {
    Knots knots{};
    for (int j = 0; j < kKnotCount; ++j) {
      knots.at[j] = static_cast<std::uint8_t>(8 * j + 20 * channel);
    }
    const ToneCurve curve = ToneCurve::of(knots);
    std::copy_n(curve.bytes, sizeof curve.bytes, block + 3 + 24 * channel);
  }
  const Colour stored = curvesOfGrey(64, 16, block);
  EXPECT_EQ(stored.r, 32);
  EXPECT_EQ(stored.g, 52);
  EXPECT_EQ(stored.b, 72);
  EXPECT_EQ(curvesOfGrey(64, 8, block).r, 48);   // half way from the straight line
  EXPECT_EQ(curvesOfGrey(64, 32, block).r, 98);  // the strong curves are built in
  block[0] = 1;
  EXPECT_EQ(curvesOfGrey(64, 16, block).r, 82);
}

struct GlowSize {
  PixelFormat format;
  int width, height;
  int ratio;
};

std::vector<GlowSize> glowSizes() {
#ifdef LUMORA_REDUCED_TESTS
  constexpr int kStep = 26;
#else
  constexpr int kStep = 5;
#endif
  std::vector<GlowSize> sizes;
  int ratio = 8;
  for (int width = 88; width <= 140; width += kStep) {
    for (const int height : {88, 111, 140}) {
      sizes.push_back({PixelFormat::kRgba, width, height, ratio});
      sizes.push_back({PixelFormat::kNv12, width & ~1, height & ~1, ratio});
      ratio = ratio == 32 ? 8 : ratio + 3;
    }
  }
  sizes.push_back({PixelFormat::kRgba, 301, 517, 16});
  sizes.push_back({PixelFormat::kNv21, 514, 524, 24});
  return sizes;
}

void referenceGlow(const Picture& picture, int ratio) {
  const int levels = glowLevels(std::min(picture.widthPixels, picture.heightRows));
  const Planes blurred = referenceBlur3x3(referenceReduce(picture, levels));
  referenceGrow(blurred, levels, picture, {}, GlowWeight(ratio));
}

Status curveStage(const Picture& picture, int ratio) {
  return runLook(kMeishimenghuan(), picture, {nullptr, nullptr, ratio}, Threads::kCaller);
}

TEST(Glow, EqualsThePlainStepsAndTheCurveStage) {
  for (const GlowSize& size : glowSizes()) {
    TestPicture expected(size.format, size.width, size.height, 3);
    referenceGlow(expected.view(), size.ratio);
    ASSERT_EQ(curveStage(expected.view(), size.ratio), Status::kOk);
    for (const int level : supportedLevels()) {
      const ForcedLevel forced(level);
      for (const Threads threads : {Threads::kCaller, Threads::kFour}) {
        TestPicture picture(size.format, size.width, size.height, 3);
        const GuardedBuffer scratch(3 * static_cast<std::size_t>(size.width * size.height));
        ASSERT_EQ(
            FilterMeishimenghuan(picture.view(), scratch.data(), nullptr, size.ratio, threads),
            Status::kOk);
        ASSERT_TRUE(picture.equals(expected.snapshot()))
            << size.width << " x " << size.height << ": "
            << picture.difference(expected.snapshot());
      }
    }
  }
}

TEST(Glow, RefusesSmallPictures) {
  TestPicture picture(PixelFormat::kRgba, 64, 200);
  const Bytes before = picture.snapshot();
  Bytes scratch(3 * 64 * 200);
  const CapturedLog log;
  EXPECT_EQ(FilterMeishimenghuan(picture.view(), scratch.data(), nullptr, 16, Threads::kFour),
            Status::kBadArgument);
  EXPECT_TRUE(picture.equals(before));
  EXPECT_TRUE(log.lines().empty());
}

// Without a worker of the reduction there is no glow at all, without one of the blend its stripe
// has none, and only the curve stage's workers make the look fail.
TEST(Glow, GoesOnWithoutWorkers) {
  TestPicture plainCurves(PixelFormat::kRgba, 96, 100), whole(PixelFormat::kRgba, 96, 100);
  ASSERT_EQ(curveStage(plainCurves.view(), 16), Status::kOk);
  referenceGlow(whole.view(), 16);
  const Bytes glowOnly = whole.snapshot();
  ASSERT_EQ(curveStage(whole.view(), 16), Status::kOk);
  Bytes scratch(3 * 96 * 100);
  // A failed reduction starts no blend, so the curve stage has starts 4 to 7 there, else 8 to 11.
  for (unsigned start = 0; start < 12; ++start) {
    TestPicture picture(PixelFormat::kRgba, 96, 100);
    const CapturedLog log;
    const ThreadFaults faults(1u << start);
    EXPECT_EQ(FilterMeishimenghuan(picture.view(), scratch.data(), nullptr, 16, Threads::kFour),
              start < 8 ? Status::kOk : Status::kThreadFailed);
    EXPECT_EQ(ThreadFaults::startCount(), start < 4 ? 8 : 12);
    std::vector<std::string> errors{kThreadFailure, "[%s]  Error threadID = %d!"};
    if (start < 4) errors.push_back("[%s] DownSampleRGBA2RGB_multiThread failed!\n");
    EXPECT_EQ(log.errors(), errors) << start;
    const std::ptrdiff_t stride = picture.view().strideBytes;
    for (int y = 0; y < 100; ++y) {
      const bool isMissing = y / 25 == static_cast<int>(start % 4);
      const Bytes& expected = start < 4 || (start < 8 && isMissing) ? plainCurves.snapshot()
                              : start >= 8 && isMissing             ? glowOnly
                                                                    : whole.snapshot();
      ASSERT_TRUE(std::equal(expected.begin() + y * stride, expected.begin() + (y + 1) * stride,
                             picture.data() + y * stride))
          << "start " << start << ", row " << y;
    }
  }
}

}  // namespace
}  // namespace lumora::test
