// Tables on pictures: against the rule in double precision, at every vector level.
#include "lut/interpolation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>

#include "support/test_picture.h"

namespace lumora::test {
namespace {

using lut::Interpolation;
using lut::Lut;
using lut::Triple;

Lut noiseTable(int size, bool is1d, float lowest = 0, float highest = 1) {
  Lut lut;
  lut.size = size;
  lut.is1d = is1d;
  lut.lowest = {lowest, lowest, lowest};
  lut.highest = {highest, highest, highest};
  Noise noise(3);
  for (std::size_t i = 0; i < lut::entryCount(is1d, size); ++i) {
    Triple entry;
    for (float& value : entry) value = static_cast<float>(noise.byte()) / 200 - 0.1F;
    lut.entries.push_back(entry);
  }
  return lut;
}

struct Place {
  int cell;
  double part;
};

Place placeOf(const Lut& lut, int channel, int level) {
  const double range = double{lut.highest[channel]} - lut.lowest[channel];
  const double share = std::clamp((level / 255.0 - lut.lowest[channel]) / range, 0.0, 1.0);
  const double at = share * (lut.size - 1);
  const int cell = std::min(static_cast<int>(at), lut.size - 2);
  return {cell, at - cell};
}

// From the darkest corner of the cell along the edges, the channel of the greatest part first.
double expectedLevel(const Lut& lut, const std::uint8_t* pixel, int channel) {
  Place places[3];
  for (int c = 0; c < 3; ++c) places[c] = placeOf(lut, c, pixel[c]);
  const auto entry = [&lut, channel](std::size_t i) { return double{lut.entries[i][channel]}; };
  if (lut.is1d) {
    const Place at = places[channel];
    return 255 * (entry(at.cell) * (1 - at.part) + entry(at.cell + 1) * at.part);
  }
  const auto n = static_cast<std::size_t>(lut.size);
  const std::size_t steps[3] = {1, n, n * n};
  std::size_t at = 0;
  for (int c = 0; c < 3; ++c) at += places[c].cell * steps[c];
  int order[3] = {0, 1, 2};
  std::sort(order, order + 3, [&](int a, int b) { return places[a].part > places[b].part; });
  double value = entry(at);
  for (const int c : order) {
    value += places[c].part * (entry(at + steps[c]) - entry(at));
    at += steps[c];
  }
  return 255 * value;
}

// The greatest distance of a result from the rule's, both held within 0..255.
double worstError(const Lut& lut, int widthPixels) {
  TestPicture picture(PixelFormat::kRgba, widthPixels, 90, 12, 5);
  const Bytes before = picture.snapshot();
  const Picture view = picture.view();
  Interpolation(lut).apply(view.data, view.widthPixels, view.heightRows, view.strideBytes, 16);
  EXPECT_TRUE(picture.keepsBorders(before));
  double worst = 0;
  for (int y = 0; y < view.heightRows; ++y) {
    for (int x = 0; x < widthPixels; ++x) {
      const std::ptrdiff_t at = y * view.strideBytes + 4 * x;
      for (int c = 0; c < 3; ++c) {
        const double expected = std::clamp(expectedLevel(lut, &before[at], c), 0.0, 255.0);
        worst = std::max(worst, std::abs(view.data[at + c] - expected));
      }
    }
  }
  return worst;
}

TEST(Interpolation, FollowsTheRuleAtEveryLevelSizeAndDomain) {
  for (const int level : supportedLevels()) {
    const ForcedLevel forced(level);
    for (const int size : {2, 3, 17, 33, 65, 129}) {
      if (kReduced && size > 33) continue;
      EXPECT_LE(worstError(noiseTable(size, false), 88 + size % 17), 1.0)
          << vectorLevelName(level) << ' ' << size;
    }
    EXPECT_LE(worstError(noiseTable(9, false, -0.5F, 1.5F), 91), 1.0) << vectorLevelName(level);
    EXPECT_LE(worstError(noiseTable(9, false, 0.25F, 0.5F), 91), 1.0) << vectorLevelName(level);
  }
  EXPECT_LE(worstError(noiseTable(5, true), 91), 0.51);
  EXPECT_LE(worstError(noiseTable(1024, true, -0.25F, 1.25F), 91), 0.51);
}

TEST(Interpolation, EveryLevelGivesTheSameBytes) {
  for (const Lut& lut : {noiseTable(33, false), noiseTable(17, false, 0.1F, 0.8F)}) {
    const Interpolation table(lut);
    Bytes first;
    for (const int level : supportedLevels()) {
      const ForcedLevel forced(level);
      TestPicture picture(PixelFormat::kRgba, 491, 120, 12, 5);
      const Picture view = picture.view();
      table.apply(view.data, view.widthPixels, view.heightRows, view.strideBytes, 16);
      if (first.empty()) first = picture.snapshot();
      EXPECT_EQ(picture.difference(first), kNone) << vectorLevelName(level);
    }
  }
}

TEST(Interpolation, TheTableThatChangesNothingChangesNothing) {
  for (const int level : supportedLevels()) {
    const ForcedLevel forced(level);
    for (const int size : {2, 9, 33, 64, 129}) {
      if (kReduced && size > 33) continue;
      Lut lut;
      lut.size = size;
      const auto n = static_cast<std::size_t>(size);
      const auto whole = static_cast<float>(size - 1);
      for (std::size_t i = 0; i < n * n * n; ++i) {
        lut.entries.push_back({static_cast<float>(i % n) / whole,
                               static_cast<float>(i / n % n) / whole,
                               static_cast<float>(i / (n * n)) / whole});
      }
      TestPicture picture(PixelFormat::kRgba, 203, 120);
      const Bytes before = picture.snapshot();
      const Picture view = picture.view();
      Interpolation(lut).apply(view.data, 203, 120, view.strideBytes, 16);
      EXPECT_EQ(picture.difference(before), kNone) << vectorLevelName(level) << ' ' << size;
    }
  }
}

TEST(Interpolation, StrengthMixes) {
  // All becomes white.
  Lut lut;
  lut.size = 2;
  lut.entries.assign(8, {1, 1, 1});
  for (const auto& [strength, expected] :
       {std::pair{0, 178}, {8, 216}, {15, 245}, {16, 255}, {32, 255}}) {
    TestPicture picture(PixelFormat::kRgba, 90, 88);
    picture.fill(100, 100, 100, 7);
    const Picture view = picture.view();
    Interpolation(lut).apply(view.data, 90, 88, view.strideBytes, strength);
    EXPECT_EQ(view.data[0], expected) << strength;
    EXPECT_EQ(view.data[3], 7);
  }
}

}  // namespace
}  // namespace lumora::test
