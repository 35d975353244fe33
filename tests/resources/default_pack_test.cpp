// The drawn texture pack: the same bytes everywhere, within what each look can bear.
#include "default_pack/default_pack.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>

#include "resources/texture_pack.h"
#include "support/test_picture.h"

namespace lumora::test {
namespace {

// A change of a drawing changes this number, which must then be the same for every compiler,
// optimisation and processor.
constexpr std::uint64_t kChecksum = 0xB0832940FE855290;

const Bytes& drawnPack() {
  static const Bytes pack = [] {
    Bytes bytes(kPackBytes, 0xEE);
    drawDefaultPack(bytes.data());
    return bytes;
  }();
  return pack;
}

Bytes image(PackSlot slot) {
  const auto first = drawnPack().begin() + kPackImages[slot].offset;
  return {first, first + kPackImages[slot].bytes()};
}

TEST(DefaultPack, IsTheSameEverywhere) {
  EXPECT_EQ(Bytes(drawnPack().begin(), drawnPack().begin() + 16),
            (Bytes{4, 0, 4, 0, 0, 0, 0, 0, 0, 0, 1, 4, 1, 1, 0, 4}));
  EXPECT_EQ(checksumOf(drawnPack()), kChecksum);
}

#if defined(LUMORA_PACK)
TEST(DefaultPack, IsWhatTheBuildWrites) {
  std::ifstream file(LUMORA_PACK, std::ios::binary);
  const Bytes written{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  EXPECT_EQ(written.size(), kPackBytes);
  EXPECT_EQ(checksumOf(written), kChecksum);
}
#endif

struct Range {
  PackSlot slot;
  int least, most;
  double leastMean, mostMean;
};

TEST(DefaultPack, StaysWithinWhatTheLooksBear) {
  for (const Range& range : {Range{kSlotShade, 120, 255, 222, 236},
                             {kSlotClouds, 72, 184, 124, 132},
                             {kSlotVignette, 88, 255, 195, 210},
                             {kSlotEdgeBurn, 0, 150, 35, 50},
                             {kSlotLamp, 56, 165, 100, 116},
                             {kSlotDusk, 40, 136, 90, 104},
                             {kSlotFalloff, 40, 140, 100, 116},
                             {kSlotGrain, 4, 170, 50, 58},
                             {kSlotLeak0, 0, 206, 10, 40},
                             {kSlotBlotch, 0, 210, 0, 50},
                             {kSlotSpeck, 0, 220, 0, 50}}) {
    const Bytes texels = image(range.slot);
    const auto [least, most] = std::minmax_element(texels.begin(), texels.end());
    double sum = 0;
    for (const std::uint8_t texel : texels) sum += texel;
    const double mean = sum / static_cast<double>(texels.size());
    const char* const name = kPackImages[range.slot].name;
    EXPECT_GE(*least, range.least) << name;
    EXPECT_LE(*most, range.most) << name;
    EXPECT_GE(mean, range.leastMean) << name;
    EXPECT_LE(mean, range.mostMean) << name;
  }
}

// Where a strong look steepens a smooth texture, an area of one value would have a visible rim.
TEST(DefaultPack, SteepenedVignettesHaveNoFlatAreas) {
  constexpr int kBlock = 8;
  for (const PackSlot slot : {kSlotDusk, kSlotFalloff}) {
    const Bytes texels = image(slot);
    for (int y = 0; y < 1024; y += kBlock) {
      for (int x = 0; x < 1024; x += kBlock) {
        std::set<std::uint8_t> values;
        for (int row = y; row < y + kBlock; ++row) {
          const auto first = texels.begin() + row * 1024 + x;
          values.insert(first, first + kBlock);
        }
        ASSERT_GT(values.size(), 1U) << kPackImages[slot].name << ' ' << x << ',' << y;
      }
    }
  }
}

// The width of a grain, in texels, along the axis on which neighbours lie `next` bytes apart: how
// far apart two places have half of their grain in common, both ways, drawn by the nearest texel.
double grainLength(const Bytes& texels, std::size_t next) {
  double sum = 0, squares = 0, products = 0;
  const std::size_t count = texels.size() - next;
  for (std::size_t i = 0; i < count; ++i) {
    const double t = texels[i];
    sum += t;
    squares += t * t;
    products += t * texels[i + next];
  }
  const double square = sum * sum / static_cast<double>(count);
  return 1 / (1 - (products - square) / (squares - square));
}

TEST(DefaultPack, GrainIsFineAndRoundInTheFrame) {
  const Bytes texels = image(kSlotGrain);
  const double width = grainLength(texels, 1);
  const double height = grainLength(texels, 1024);
  EXPECT_LT(width, 1.5);
  for (const double shape : {4.0 / 3, 3.0 / 2}) {
    EXPECT_NEAR(width * shape / height, 1, 0.12) << shape;
  }
}

// Marks are above 79; nothing lies so near below that it is in doubt.
TEST(DefaultPack, MarksStandOutFromTheirGround) {
  for (const PackSlot slot : {kSlotBlotch, kSlotSpeck}) {
    const Bytes texels = image(slot);
    const auto marks = std::count_if(texels.begin(), texels.end(), [](int t) { return t > 79; });
    EXPECT_GT(marks * 10, static_cast<std::ptrdiff_t>(texels.size())) << kPackImages[slot].name;
    EXPECT_LT(marks * 6, static_cast<std::ptrdiff_t>(texels.size())) << kPackImages[slot].name;
    for (const int t : texels) EXPECT_TRUE(t <= 40 || t >= 86) << kPackImages[slot].name << t;
  }
}

// Each direction is the first one's picture, turned clockwise by a quarter more.
TEST(DefaultPack, TheLeakTurnsWithTheDirection) {
  const auto pixel = [](const Bytes& leak, int x, int y) {
    const auto at = leak.begin() + (y * 512 + x) * 3;
    return Bytes(at, at + 3);
  };
  const Bytes leak[] = {image(kSlotLeak0), image(kSlotLeak1), image(kSlotLeak2), image(kSlotLeak3)};
  for (int y = 0; y < 512; y += 37) {
    for (int x = 0; x < 512; x += 3) {
      const Bytes expected = pixel(leak[0], x, y);
      ASSERT_EQ(pixel(leak[1], 511 - y, x), expected);
      ASSERT_EQ(pixel(leak[2], 511 - x, 511 - y), expected);
      ASSERT_EQ(pixel(leak[3], y, 511 - x), expected);
    }
  }
  // A third of it and more lets the picture through unchanged.
  const auto dark = std::count(leak[0].begin(), leak[0].end(), 0);
  EXPECT_GT(dark * 3, static_cast<std::ptrdiff_t>(leak[0].size()));
}

}  // namespace
}  // namespace lumora::test
