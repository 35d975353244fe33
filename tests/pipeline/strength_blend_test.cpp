// Mixing runs of bytes, byte by byte.
#include <gtest/gtest.h>

#include "pixels/blend_kernel.h"
#include "support/everywhere.h"

namespace lumora::test {
namespace {

// The guarded ends catch one byte too far.
void expectMixed(const Bytes& copy, const Bytes& picture, int weight) {
  Bytes expected(copy.size());
  for (std::size_t i = 0; i < copy.size(); ++i) {
    expected[i] = toByte((copy[i] * (16 - weight) + picture[i] * weight + 8) >> 4);
  }
  const GuardedBuffer guardedCopy(copy);
  for (const int level : supportedLevels()) {
    const ForcedLevel forced(level);
    const GuardedBuffer result(picture);
    kBlend()(guardedCopy.data(), result.data(), result.size(), weight);
    ASSERT_TRUE(std::equal(expected.begin(), expected.end(), result.data()))
        << copy.size() << " bytes, weight " << weight << " on " << vectorLevelName(level);
    ASSERT_TRUE(result.isIntact());
  }
}

TEST(StrengthBlend, MixesEveryPairAtEveryWeight) {
  Bytes copy(65536), picture(65536);
  for (std::size_t i = 0; i < copy.size(); ++i) {
    copy[i] = toByte(i);
    picture[i] = toByte(i >> 8);
  }
  for (int weight = 0; weight <= 16; ++weight) expectMixed(copy, picture, weight);
}

TEST(StrengthBlend, TouchesItsOwnBytesAlone) {
  for (std::uint32_t bytes = 1; bytes < 300; ++bytes) {
    expectMixed(noiseBytes(bytes, bytes), noiseBytes(bytes, 1), 11);
  }
}

}  // namespace
}  // namespace lumora::test
