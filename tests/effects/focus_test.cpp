// Blur and tilt-shift as a whole: each is told by its mask and the order of its blocks.
#include "effects/focus.h"

#include <gtest/gtest.h>

#include "effects/pyramid_reference.h"
#include "support/captured_log.h"
#include "support/everywhere.h"
#include "support/test_allocator.h"

namespace lumora::test {
namespace {

constexpr BlurParam kCircle{50, 61, 20, 70};
constexpr TiltShiftParam kSlanted{30, 20, 70, 60, 12}, kLevelled{0, 30, 0, 80, 16};

struct Effect {
  const char* name;
  Status (*run)(const Picture&, int level, const FilterAllocator&, Threads);
  Bytes (*mask)(int width, int height);
  bool asksForMaskFirst;
};

template <const TiltShiftParam& kTilt>
constexpr Effect tiltShift(const char* name) {
  return {name,
          [](const Picture& picture, int level, const FilterAllocator& allocator, Threads threads) {
            return FilterTiltshift(picture, kTilt, level, allocator, threads);
          },
          [](int width, int height) { return referenceMask(width, height, kTilt); }, false};
}

const Effect kEffects[] = {
    {"Blur",
     [](const Picture& picture, int level, const FilterAllocator& allocator, Threads threads) {
       return FilterBlur(picture, kCircle, level, allocator, threads);
     },
     [](int width, int height) { return referenceMask(width, height, kCircle); }, true},
    tiltShift<kSlanted>("SlantedTiltShift"),
    tiltShift<kLevelled>("LevelledTiltShift")};

struct FocusCase {
  PixelFormat format;
  int width, height, level;
};

// Both smoothings, every scale, odd and even extents.
std::vector<FocusCase> focusCases() {
  std::vector<FocusCase> cases;
  int level = 1;
  for (int width = 88; width <= 140; width += kReduced ? 26 : 7) {
    for (const int height : {88, 107, 140}) {
      cases.push_back({PixelFormat::kRgba, width, height, level});
      cases.push_back({PixelFormat::kNv21, width & ~1, height & ~1, level});
      level = level % 4 + 1;
    }
  }
  for (const int blurLevel : {1, 2, 3, 32}) {
    cases.push_back({PixelFormat::kRgba, 257, 269, blurLevel});
    cases.push_back({PixelFormat::kNv12, 290, 256, blurLevel});
  }
  cases.push_back({PixelFormat::kRgba, 255, 300, 3});
  return cases;
}

class Focus : public testing::TestWithParam<Effect> {
 protected:
  Status run(const Picture& picture, int level, Threads threads) {
    return GetParam().run(picture, level, *allocator_.record(), threads);
  }
  TestAllocator allocator_;
};

TEST_P(Focus, EqualsThePlainSteps) {
  for (const FocusCase& c : focusCases()) {
    SCOPED_TRACE(testing::Message() << "level " << c.level);
    const TestPicture picture(c.format, c.width, c.height, 3), expected(picture);
    referenceFocus(expected.view(), GetParam().mask(c.width, c.height), c.level);
    expectEverywhere(picture, expected, [&](const Picture& copy, Threads threads) {
      return run(copy, c.level, threads);
    });
  }
  EXPECT_TRUE(allocator_.balanced());
}

// Level 0 does nothing, not even check; small pictures are refused; nothing is asked for.
TEST_P(Focus, ReturnsEarly) {
  const CapturedLog log;
  for (const Threads threads : kBothThreads) {
    TestPicture small(PixelFormat::kRgba, 64, 100), large(PixelFormat::kNv12, 90, 100);
    const TestPicture smallBefore(small), largeBefore(large);
    EXPECT_EQ(run(small.view(), 0, threads), Status::kOk);
    EXPECT_EQ(run(small.view(), 3, threads), Status::kBadArgument);
    EXPECT_EQ(run(large.view(), 0, threads), Status::kOk);
    EXPECT_EQ(small.difference(smallBefore), kNone);
    EXPECT_EQ(large.difference(largeBefore), kNone);
  }
  EXPECT_TRUE(allocator_.requests().empty());
  EXPECT_TRUE(log.lines().empty());
}

// Every block is 16 bytes larger than needed; pictures above 255 smooth in floats.
TEST_P(Focus, AsksForMaskLevelsAndSmoothingWork) {
  for (const std::uint32_t width : {255u, 257u}) {
    const std::uint32_t pixels = width * 301;
    std::vector<std::uint32_t> expected = {pixels + 16, 3 * pixels + 16};
    if (!GetParam().asksForMaskFirst) std::swap(expected[0], expected[1]);
    if (width > 255) expected.push_back(8 * 65 * 76 + 16);
    const TestPicture picture(PixelFormat::kRgba, static_cast<int>(width), 301);
    allocator_.clearRequests();
    EXPECT_EQ(run(picture.view(), 3, Threads::kFour), Status::kOk);
    EXPECT_EQ(allocator_.requests(), expected);
  }
  const TestPicture picture(PixelFormat::kRgba, 257, 301), before(picture);
  for (int n = 1; n <= 3; ++n) {
    const CapturedLog log;
    allocator_.failAt(n);
    EXPECT_EQ(run(picture.view(), 3, Threads::kFour), Status::kNoMemory) << n;
    EXPECT_EQ(log.errors(), std::vector<std::string>{"[%s] can't malloc enough memory!\n"}) << n;
    EXPECT_EQ(picture.difference(before), kNone) << n;
  }
  EXPECT_TRUE(allocator_.balanced());
}

INSTANTIATE_TEST_SUITE_P(Effects, Focus, testing::ValuesIn(kEffects),
                         [](const auto& p) { return p.param.name; });

}  // namespace
}  // namespace lumora::test
