// The focus masks against direct evaluation at every pixel, for any integers a host may pass.
#include "effects/masks.h"

#include <gtest/gtest.h>

#include <climits>

#include "effects/pyramid_reference.h"

namespace lumora::test {
namespace {

std::string toText(const BlurParam& c) {
  return "centre " + std::to_string(c.centreX) + ", " + std::to_string(c.centreY) + ", radii " +
         std::to_string(c.innerRadius) + ", " + std::to_string(c.outerRadius);
}

std::string toText(const TiltShiftParam& t) {
  return "points " + std::to_string(t.x1) + ", " + std::to_string(t.y1) + " and " +
         std::to_string(t.x2) + ", " + std::to_string(t.y2) + ", core " + std::to_string(t.core);
}

// Masks lie before an inaccessible page and keep what lies before them.
Bytes circleMask(int width, int height, const BlurParam& circle) {
  const GuardedBuffer mask(static_cast<std::size_t>(width * height));
  BuildCircleMask(mask.data(), width, height, circle);
  EXPECT_TRUE(mask.isIntact());
  return {mask.data(), mask.data() + mask.size()};
}

Bytes tiltMask(int width, int height, const TiltShiftParam& tilt) {
  const GuardedBuffer mask(static_cast<std::size_t>(width * height));
  BuildTiltMask(mask.data(), width, height, tilt);
  EXPECT_TRUE(mask.isIntact());
  return {mask.data(), mask.data() + mask.size()};
}

// Integers around the picture, and from there to the ends of the range.
std::int32_t anyInteger(Noise& noise) {
  const auto wide = static_cast<std::int32_t>(noise.next());
  switch (noise.next() % 8) {
    case 0: return wide;
    case 1: return noise.next() % 2 != 0 ? INT_MAX : INT_MIN;
    case 2: return wide % 70000;
    default: return wide % 300;
  }
}

class MasksAtLevel : public testing::TestWithParam<int> {
 protected:
  ForcedLevel level_{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Levels, MasksAtLevel, testing::ValuesIn(supportedLevels()));

TEST_P(MasksAtLevel, CirclesEqualDirectEvaluation) {
  const BlurParam circles[] = {
      {150, 100, 40, 90},      // inside the picture
      {150, 100, 0, 1},        // two rings of pixels
      {150, 100, 37, 37},      // no ring
      {150, 100, 80, 30},      // the radii swapped
      {150, 100, -20, 60},     // sharp nowhere
      {150, 100, -90, -20},    // nothing
      {0, 0, 100, 260},        // clipped by the corners, each in turn
      {299, 0, 100, 260},      //
      {0, 199, 100, 260},      //
      {299, 199, 100, 260},    //
      {-80, 90, 60, 120},      // centres outside
      {150, 290, 60, 130},     //
      {900, 900, 10, 40},      // nothing of it inside
      {150, 100, 1000, 2000},  // all of the picture inside
      {150, 100, 2, 32767},    // the widest ring that is done in vectors
      {150, 100, 2, 32768},    // and one beyond
      {-30000, 100, 29990, 30200},
      {-60000, 100, 59990, 60300},
      {INT_MIN, 0, INT_MAX - 9, INT_MAX},
      {INT_MAX, INT_MAX, 5, INT_MAX},
      {150, 100, INT_MIN, INT_MAX},
      {150, 100, INT_MAX, INT_MIN},
      {150, 100, INT_MAX - 1, INT_MAX},
      {-2000000000, 50, 1999999900, 2000000250},
  };
  for (const BlurParam& circle : circles) {
    EXPECT_EQ(circleMask(300, 200, circle), referenceCircle(300, 200, circle)) << toText(circle);
  }
}

TEST_P(MasksAtLevel, GeneratedCirclesEqualDirectEvaluation) {
#ifdef LUMORA_REDUCED_TESTS
  constexpr int kCount = 30;
#else
  constexpr int kCount = 500;
#endif
  Noise noise(31);
  for (int i = 0; i < kCount; ++i) {
    const int width = 88 + static_cast<int>(noise.next() % 90);
    const BlurParam circle{anyInteger(noise), anyInteger(noise), anyInteger(noise),
                           anyInteger(noise)};
    ASSERT_EQ(circleMask(width, 93, circle), referenceCircle(width, 93, circle)) << toText(circle);
  }
}

// Far from the centre the rounded square root reaches a whole number before the distance does.
TEST_P(MasksAtLevel, CirclesOfLargePicturesEqualDirectEvaluation) {
  const BlurParam circles[] = {{0, 0, 16000, 19990}, {19999, 3, 4090, 12290}};
  for (const BlurParam& circle : circles) {
    EXPECT_EQ(circleMask(20000, 88, circle), referenceCircle(20000, 88, circle)) << toText(circle);
  }
}

TEST_P(MasksAtLevel, BandsEqualDirectEvaluation) {
  const TiltShiftParam bands[] = {
      {0, 60, 0, 140, 16},       // across the rows
      {7, 140, 7, 60, 0},        // without a core
      {7, -50, 7, 40, 32},       // without ramps, clipped
      {7, 150, 7, 900, 3},       //
      {80, 5, 210, 5, 16},       // across the columns
      {210, 5, -80, 5, 9},       //
      {-90, 5, -1, 5, 9},        // beside the picture
      {299, 5, 400, 5, 32},      // touching its last column
      {298, 5, 400, 5, 32},      // reaching into it
      {-900, 5, 1200, 5, 20},    // a core that covers it
      {100, 60, 180, 130, 16},   // slanted down
      {100, 130, 180, 60, 16},   // slanted up
      {10, 10, 40, 30, 0},       // in a corner
      {290, 20, 250, 5, 32},     //
      {-200, -100, -20, 30, 8},  // clipped by the left side
      {280, 150, 500, 420, 8},   // and the right
      {100, 90, 101, 110, 12},   // nearly across the rows
      {90, 100, 190, 101, 12},   // nearly across the columns
      {150, 100, 150, 100, 16},  // one point
      {0, INT_MIN, 1, INT_MAX, 16},
      {0, INT_MIN, 1, INT_MAX, 0},
      {INT_MIN, 0, INT_MAX, 1, 0},
      {INT_MIN, INT_MIN, INT_MAX, INT_MAX, 7},
      {INT_MAX, INT_MIN, INT_MIN, INT_MAX, 32},
      {0, INT_MIN, 0, INT_MAX, 1},
      {INT_MIN, 3, INT_MAX, 3, 1},
  };
  for (const TiltShiftParam& band : bands) {
    EXPECT_EQ(tiltMask(300, 200, band), referenceBand(300, 200, band)) << toText(band);
  }
}

TEST_P(MasksAtLevel, GeneratedBandsEqualDirectEvaluation) {
#ifdef LUMORA_REDUCED_TESTS
  constexpr int kCount = 30;
#else
  constexpr int kCount = 500;
#endif
  Noise noise(41);
  for (int i = 0; i < kCount; ++i) {
    const int width = 88 + static_cast<int>(noise.next() % 90);
    const TiltShiftParam band{anyInteger(noise), anyInteger(noise), anyInteger(noise),
                              anyInteger(noise), static_cast<std::int32_t>(noise.next() % 33)};
    ASSERT_EQ(tiltMask(width, 93, band), referenceBand(width, 93, band)) << toText(band);
  }
}

TEST(CircleMask, RisesFromTheInnerToTheOuterRadius) {
  const Bytes mask = circleMask(300, 200, {100, 100, 40, 90});
  const auto at = [&](int x) { return int{mask[static_cast<std::size_t>(100 * 300 + x)]}; };
  EXPECT_EQ(at(100), 0);
  EXPECT_EQ(at(140), 0);  // at the inner radius exactly
  EXPECT_EQ(at(141), 255 - ((49 * 10444) >> 11));
  EXPECT_EQ(at(165), 255 - ((25 * 10444) >> 11));
  EXPECT_EQ(at(190), 255);  // at the outer one
  EXPECT_EQ(at(250), 255);
}

TEST(TiltMask, FallsStaysAndRises) {
  const Bytes mask = tiltMask(1000, 1000, {0, 400, 0, 600, 16});
  const auto row = [&](int y) { return int{mask[static_cast<std::size_t>(y * 1000 + 77)]}; };
  EXPECT_EQ(row(399), 255);
  EXPECT_EQ(row(400), 255);
  EXPECT_EQ(row(401), 249);  // 5.1 a row
  EXPECT_EQ(row(449), 5);
  EXPECT_EQ(row(450), 0);
  EXPECT_EQ(row(549), 0);
  EXPECT_EQ(row(551), 5);
  EXPECT_EQ(row(599), 249);
  EXPECT_EQ(row(600), 255);
}

}  // namespace
}  // namespace lumora::test
