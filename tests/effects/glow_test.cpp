// The glow look as a whole; its curve stage is tested with the looks.
#include "effects/glow.h"

#include <gtest/gtest.h>

#include "effects/pyramid_reference.h"
#include "looks/looks.h"
#include "support/captured_log.h"
#include "support/everywhere.h"
#include "support/test_handle.h"
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

void referenceGlow(const Picture& picture, int ratio) {
  const int levels = glowLevels(std::min(picture.widthPixels, picture.heightRows));
  const Planes blurred = referenceBlur3x3(referenceReduce(picture, levels));
  referenceGrow(blurred, levels, picture, {}, GlowWeight(ratio));
}

Status curveStage(const Picture& picture, int ratio) {
  return runLook(kMeishimenghuan(), picture, {{}, nullptr, ratio}, Threads::kCaller);
}

void expectPlainSteps(PixelFormat format, int width, int height, int ratio) {
  const TestPicture picture(format, width, height, 3), expected(picture);
  referenceGlow(expected.view(), ratio);
  ASSERT_EQ(curveStage(expected.view(), ratio), Status::kOk);
  expectEverywhere(picture, expected, [&](const Picture& copy, Threads threads) {
    const GuardedBuffer scratch(3 * static_cast<std::size_t>(width * height));
    return FilterMeishimenghuan(copy, scratch.data(), nullptr, ratio, threads);
  });
}

TEST(Glow, EqualsThePlainStepsAndTheCurveStage) {
  int ratio = 8;
  for (int width = 88; width <= 140; width += kReduced ? 26 : 5) {
    for (const int height : {88, 111, 140}) {
      expectPlainSteps(PixelFormat::kRgba, width, height, ratio);
      expectPlainSteps(PixelFormat::kNv12, width & ~1, height & ~1, ratio);
      ratio = ratio == 32 ? 8 : ratio + 3;
    }
  }
  expectPlainSteps(PixelFormat::kRgba, 301, 517, 16);
  expectPlainSteps(PixelFormat::kNv21, 514, 524, 24);
}

TEST(Glow, RefusesSmallPictures) {
  const TestPicture picture(PixelFormat::kRgba, 64, 200), before(picture);
  Bytes scratch(3 * 64 * 200);
  const CapturedLog log;
  EXPECT_EQ(FilterMeishimenghuan(picture.view(), scratch.data(), nullptr, 16, Threads::kFour),
            Status::kBadArgument);
  EXPECT_EQ(picture.difference(before), kNone);
  EXPECT_TRUE(log.lines().empty());
}

// Without a worker of the reduction there is no glow at all, without one of the blend its stripe
// has none; the curves come all the same.
TEST(Glow, GoesOnWithoutWorkers) {
  const TestPicture picture(PixelFormat::kRgba, 96, 100), curves(picture), whole(picture);
  ASSERT_EQ(curveStage(curves.view(), 16), Status::kOk);
  referenceGlow(whole.view(), 16);
  ASSERT_EQ(curveStage(whole.view(), 16), Status::kOk);
  Bytes scratch(3 * 96 * 100);
  for (unsigned start = 0; start < 8; ++start) {
    SCOPED_TRACE(start);
    const TestPicture result(picture), expected(start < 4 ? curves : whole);
    if (start >= 4) {
      const auto stripe = static_cast<std::ptrdiff_t>(curves.bytes() / 4);
      std::copy_n(curves.data() + (start - 4) * stripe, stripe,
                  expected.data() + (start - 4) * stripe);
    }
    const ThreadFaults faults(1u << start);
    EXPECT_EQ(FilterMeishimenghuan(result.view(), scratch.data(), nullptr, 16, Threads::kFour),
              Status::kOk);
    EXPECT_EQ(result.difference(expected), kNone);
  }
}

// A handle of the picture's size has the glow's memory; any other call asks for it.
TEST(Glow, UsesTheHandlesSparePlanesWhereTheyFit) {
  TestAllocator allocator;
  const TestHandle handle(allocator, {});
  const FilterHandleView view = handle.view();
  const Bytes before(view.plane(0), view.plane(kPlaneCount));
  const auto requestsFor = [&](int width, int height) {
    const TestPicture picture(PixelFormat::kRgba, width, height);
    const FilterImage image = picture.image();
    allocator.clearRequests();
    FilterProcessParam param{};
    param.eMode = LUMORA_MODE_MEISHIMENGHUAN;
    param.effectRatio = 16;
    EXPECT_EQ(filterProcess(handle.get(), &image, &param), 0u);
    return allocator.requests();
  };
  EXPECT_TRUE(requestsFor(96, 88).empty());
  EXPECT_TRUE(std::equal(view.plane(0), view.plane(kScratchPlane), before.begin()));
  EXPECT_TRUE(std::equal(view.plane(13), view.plane(kPlaneCount), before.begin() + 13 * 96 * 88));
  EXPECT_EQ(requestsFor(88, 88), std::vector<std::uint32_t>{3 * 88 * 88 + 16});
  EXPECT_EQ(requestsFor(96, 90), std::vector<std::uint32_t>{3 * 96 * 90 + 16});
}

}  // namespace
}  // namespace lumora::test
