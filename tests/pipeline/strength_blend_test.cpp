// The strength blend, byte by byte.
#include "pipeline/strength_blend.h"

#include <gtest/gtest.h>

#include "support/test_picture.h"
#include "support/thread_faults.h"

namespace lumora::test {
namespace {

class StrengthBlend : public testing::TestWithParam<int> {
 protected:
  ForcedLevel level_{GetParam()};
};

std::uint8_t mixed(int copy, int filtered, int weight) {
  return toByte((copy * (16 - weight) + filtered * weight + 8) >> 4);
}

TEST_P(StrengthBlend, MixesEveryPairAtEveryWeight) {
  constexpr std::size_t kPairs = 65536;
  GuardedBuffer copy(kPairs), picture(kPairs);
  for (int weight = 0; weight <= 16; ++weight) {
    for (std::size_t i = 0; i < kPairs; ++i) {
      copy.data()[i] = toByte(i);
      picture.data()[i] = toByte(i >> 8);
    }
    FilterBlend(copy.data(), picture.data(), kPairs, weight);
    int wrong = 0;
    for (int i = 0; i < 65536; ++i) wrong += picture.data()[i] != mixed(i & 255, i >> 8, weight);
    EXPECT_EQ(wrong, 0) << "weight " << weight;
  }
}

// Both forms, at every length around the vector sizes; the guarded ends catch one byte too far.
TEST_P(StrengthBlend, TouchesItsOwnBytesAlone) {
  for (std::size_t bytes = 32; bytes < 300; ++bytes) {
    GuardedBuffer copy(bytes), one(bytes), four(bytes);
    std::vector<std::uint8_t> expected(bytes);
    Noise noise(static_cast<std::uint32_t>(bytes));
    for (std::size_t i = 0; i < bytes; ++i) {
      copy.data()[i] = noise.byte();
      one.data()[i] = four.data()[i] = noise.byte();
      expected[i] = mixed(copy.data()[i], one.data()[i], 11);
    }
    FilterBlend(copy.data(), one.data(), bytes, 11);
    ASSERT_EQ(FilterBlend_multiThread(copy.data(), four.data(), bytes, 11), Status::kOk);
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), one.data())) << bytes;
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), four.data())) << bytes;
    EXPECT_TRUE(one.isIntact() && four.isIntact());
  }
}

TEST_P(StrengthBlend, LeavesTheStripeOfAMissingWorkerFiltered) {
  constexpr std::size_t kBytes = 103;
  std::vector<std::uint8_t> copy(kBytes, 0), picture(kBytes, 255);
  const ThreadFaults faults(1u << 3);
  EXPECT_EQ(FilterBlend_multiThread(copy.data(), picture.data(), kBytes, 8), Status::kThreadFailed);
  for (std::size_t i = 0; i < kBytes; ++i) EXPECT_EQ(picture[i], i < 75 ? 128 : 255) << i;
}

INSTANTIATE_TEST_SUITE_P(Levels, StrengthBlend, testing::ValuesIn(supportedLevels()),
                         [](const auto& level) { return vectorLevelName(level.param); });

}  // namespace
}  // namespace lumora::test
