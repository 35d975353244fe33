// The strength blend, byte by byte.
#include "pipeline/strength_blend.h"

#include <gtest/gtest.h>

#include "support/everywhere.h"
#include "support/thread_faults.h"

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
    for (const Threads threads : kBothThreads) {
      const GuardedBuffer result(picture);
      if (threads == Threads::kCaller) {
        FilterBlend(guardedCopy.data(), result.data(), result.size(), weight);
      } else {
        ASSERT_EQ(FilterBlend_multiThread(guardedCopy.data(), result.data(), result.size(), weight),
                  Status::kOk);
      }
      ASSERT_TRUE(std::equal(expected.begin(), expected.end(), result.data()))
          << copy.size() << " bytes, weight " << weight << " on " << vectorLevelName(level);
      ASSERT_TRUE(result.isIntact());
    }
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
  for (std::uint32_t bytes = 32; bytes < 300; ++bytes) {
    expectMixed(noiseBytes(bytes, bytes), noiseBytes(bytes, 1), 11);
  }
}

TEST(StrengthBlend, LeavesTheStripeOfAMissingWorkerFiltered) {
  Bytes copy(103, 0), picture(103, 255);
  const ThreadFaults faults(1u << 3);
  EXPECT_EQ(FilterBlend_multiThread(copy.data(), picture.data(), copy.size(), 8),
            Status::kThreadFailed);
  for (std::size_t i = 0; i < 103; ++i) EXPECT_EQ(picture[i], i < 75 ? 128 : 255) << i;
}

}  // namespace
}  // namespace lumora::test
