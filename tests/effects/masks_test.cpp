// The focus masks against direct evaluation at every pixel, for any integers a host may pass.
#include "effects/masks/masks.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>

#include "effects/pyramid_reference.h"

namespace lumora::test {
namespace {

CircleMask rowsOf(int width, const BlurParam& circle) { return {width, circle}; }
TiltMask rowsOf(int width, const TiltShiftParam& tilt) { return {width, tilt}; }

// Masks lie before an inaccessible page and keep what lies before them.
template <class Shape>
Bytes maskOf(int width, int height, const Shape& shape) {
  const GuardedBuffer mask(static_cast<std::size_t>(width * height));
  const auto rows = rowsOf(width, shape);
  // Upwards: a row that reached into the one below would spoil it.
  for (int y = height; y-- > 0;) rows.fillRow(y, mask.data() + std::ptrdiff_t{y} * width);
  EXPECT_TRUE(mask.isIntact());
  return {mask.data(), mask.data() + mask.size()};
}

template <class Shape>
void expectDirectEvaluation(int width, int height, const Shape& shape) {
  const Bytes expected = referenceMask(width, height, shape);
  for (const int level : supportedLevels()) {
    const ForcedLevel forced(level);
    std::int32_t numbers[sizeof shape / sizeof(std::int32_t)];
    std::memcpy(numbers, &shape, sizeof shape);
    ASSERT_EQ(maskOf(width, height, shape), expected)
        << width << " x " << height << ": " << testing::PrintToString(numbers);
  }
}

TEST(CircleMask, EqualsDirectEvaluation) {
  // Inside the picture, in its corners, beside it, and far away.
  constexpr std::pair<int, int> kCentres[] = {
      {150, 100}, {0, 0},     {299, 0},      {0, 199},      {299, 199},   {-80, 90},
      {150, 290}, {900, 900}, {-30000, 100}, {-60000, 100}, {INT_MIN, 0}, {INT_MAX, INT_MAX}};
  // Rings of every width; 32767 is the widest that is done in vectors.
  constexpr std::pair<int, int> kRadii[] = {{40, 90},
                                            {0, 1},
                                            {37, 37},
                                            {80, 30},
                                            {-20, 60},
                                            {-90, -20},
                                            {100, 260},
                                            {1000, 2000},
                                            {2, 32767},
                                            {2, 32768},
                                            {29990, 30200},
                                            {59990, 60300},
                                            {INT_MAX - 9, INT_MAX},
                                            {INT_MIN, INT_MAX},
                                            {INT_MAX, INT_MIN}};
  for (const auto& [x, y] : kCentres) {
    for (const auto& [inner, outer] : kRadii) {
      expectDirectEvaluation(300, 200, BlurParam{x, y, inner, outer});
    }
  }
  // So far away distances are rounded to multiples of 128.
  expectDirectEvaluation(300, 200, BlurParam{-2000000000, 50, 1999999900, 2000000250});
  expectDirectEvaluation(300, 200, BlurParam{-2000000000, 50, 1999999000, 2000000050});
  // Far from the centre the rounded square root reaches a whole number before the distance does.
  expectDirectEvaluation(20000, 88, BlurParam{0, 0, 16000, 19990});
  expectDirectEvaluation(20000, 88, BlurParam{19999, 3, 4090, 12290});
}

TEST(TiltMask, EqualsDirectEvaluation) {
  // Across rows and columns, slanted both ways, nearly level, one point twice, in the picture,
  // clipped by each of its sides, beside it, touching its last column and not reaching it.
  constexpr std::pair<int, int> kPoints[] = {
      {0, 60},      {0, 140},     {7, -50},     {7, 900},           {80, 5},           {210, 5},
      {-90, 5},     {299, 5},     {298, 5},     {-900, 5},          {1200, 5},         {100, 60},
      {180, 130},   {100, 130},   {101, 131},   {-200, -100},       {500, 420},        {0, INT_MIN},
      {1, INT_MAX}, {INT_MIN, 3}, {INT_MAX, 3}, {INT_MIN, INT_MIN}, {INT_MAX, INT_MAX}};
  int turn = 0;
  for (const auto& [x1, y1] : kPoints) {
    for (const auto& [x2, y2] : kPoints) {
      for (const int core : {0, 1, 7, 16, 32}) {
        if (kReduced && ++turn % 19 != 0) continue;
        expectDirectEvaluation(300, 200, TiltShiftParam{x1, y1, x2, y2, core});
      }
    }
  }
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

TEST(Masks, OfAnyIntegersEqualDirectEvaluation) {
  Noise noise(31);
  for (int i = 0; i < (kReduced ? 30 : 500); ++i) {
    const int width = 88 + static_cast<int>(noise.next() % 90);
    const std::int32_t a = anyInteger(noise), b = anyInteger(noise), c = anyInteger(noise),
                       d = anyInteger(noise);
    expectDirectEvaluation(width, 93, BlurParam{a, b, c, d});
    expectDirectEvaluation(width, 93, TiltShiftParam{a, b, c, d, i % 33});
  }
}

TEST(CircleMask, RisesFromTheInnerToTheOuterRadius) {
  const Bytes mask = maskOf(300, 200, BlurParam{100, 100, 40, 90});
  // At the inner radius exactly, beyond it, and at the outer one.
  const std::pair<int, int> places[] = {{100, 0},   {140, 0},   {141, 255 - ((49 * 10444) >> 11)},
                                        {190, 255}, {250, 255}, {165, 255 - ((25 * 10444) >> 11)}};
  for (const auto& [x, value] : places) EXPECT_EQ(mask[100u * 300 + x], value) << x;
}

TEST(TiltMask, FallsStaysAndRises) {
  const Bytes mask = maskOf(1000, 1000, TiltShiftParam{0, 400, 0, 600, 16});
  // 5.1 a row
  const std::pair<int, int> rows[] = {{399, 255}, {400, 255}, {401, 249}, {449, 5},  {450, 0},
                                      {549, 0},   {551, 5},   {599, 249}, {600, 255}};
  for (const auto& [y, value] : rows) EXPECT_EQ(mask[y * 1000u + 77], value) << y;
}

}  // namespace
}  // namespace lumora::test
