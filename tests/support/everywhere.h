// Work on pictures whose result no processor and no count of threads may change.
#pragma once

#include <gtest/gtest.h>

#include "platform/status.h"
#include "support/test_picture.h"

namespace lumora::test {

inline constexpr Threads kBothThreads[] = {Threads::kCaller, Threads::kFour};

// Runs work(picture, threads) on copies of a picture, on every vector level, on the calling thread
// and on four: each time it must succeed and leave the expected bytes.
template <class Work>
void expectEverywhere(const TestPicture& before, const TestPicture& expected, Work work) {
  for (const int level : supportedLevels()) {
    const ForcedLevel forced(level);
    for (const Threads threads : kBothThreads) {
      TestPicture picture(before);
      ASSERT_EQ(work(picture.view(), threads), Status::kOk);
      ASSERT_EQ(picture.difference(expected), kNone)
          << "on " << vectorLevelName(level)
          << (threads == Threads::kFour ? ", four threads, " : ", one thread, ")
          << expected.description();
    }
  }
}

}  // namespace lumora::test
