// The drawn texture pack: the same bytes everywhere, within what each look can bear.
#include "default_pack/default_pack.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include "resources/texture_pack.h"
#include "support/test_picture.h"

namespace lumora::test {
namespace {

// A change of a drawing changes this number, which must then be the same for every compiler,
// optimisation and processor.
constexpr std::uint64_t kChecksum = 0xD19A1B3AE082EDD6;

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
  for (const Range& range : {Range{kSlotShade, 90, 255, 205, 220},
                             {kSlotClouds, 72, 184, 124, 132},
                             {kSlotVignette, 88, 255, 195, 210},
                             {kSlotEdgeBurn, 0, 150, 35, 50},
                             {kSlotLamp, 56, 165, 100, 116},
                             {kSlotDusk, 40, 136, 90, 104},
                             {kSlotFalloff, 40, 140, 100, 116},
                             {kSlotGrain, 4, 170, 52, 62},
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
