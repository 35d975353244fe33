// The four split rules and the four-worker fan-out.
#include "platform/stripe_runner.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "support/captured_log.h"
#include "support/thread_faults.h"

namespace lumora::test {
namespace {

struct SplitCase {
  Stripes (*split)(std::int64_t);
  std::int64_t total;
  std::array<std::int64_t, kStripeCount> counts;
};

TEST(StripeSplit, CutsByTheFourRules) {
  const SplitCase cases[] = {
      {splitRows, 90, {23, 23, 22, 22}},
      {splitRows, 88, {22, 22, 22, 22}},
      {splitRows, 10, {3, 3, 2, 2}},
      {splitRowPairs, 90, {24, 22, 22, 22}},
      {splitRowPairs, 88, {22, 22, 22, 22}},
      {splitBytes, 103, {25, 25, 25, 28}},
      {splitRoundedUp, 5, {2, 2, 1, 0}},
      {splitRoundedUp, 1, {1, 0, 0, 0}},
      {splitRoundedUp, 1080, {270, 270, 270, 270}},
      {splitRoundedUp, 6, {2, 2, 2, 0}},
  };
  for (const SplitCase& c : cases) {
    const Stripes stripes = c.split(c.total);
    std::int64_t first = 0;
    for (int k = 0; k < kStripeCount; ++k) {
      SCOPED_TRACE(testing::Message() << "case " << &c - cases << " stripe " << k);
      EXPECT_EQ(stripes[k].count, c.counts[k]);
      EXPECT_EQ(stripes[k].first, first);
      first += c.counts[k];
    }
    EXPECT_EQ(first, c.total);
  }
}

// Every combination of missing workers: the others run to their end on threads of their own, and
// each missing one is named.
TEST(StripeRunner, ReportsEachMissingWorkerAndJoinsTheOthers) {
  for (unsigned mask = 0; mask < 16; ++mask) {
    SCOPED_TRACE(mask);
    std::atomic<int> visits[kStripeCount]{};
    const auto visit = [&, caller = std::this_thread::get_id()](const Stripe&, int k) {
      if (std::this_thread::get_id() != caller) ++visits[k];
    };
    const ThreadFaults faults(mask);
    const CapturedLog log;
    EXPECT_EQ(StripeRunner::run(Stripes{}, visit), mask == 0 ? Status::kOk : Status::kThreadFailed);
    EXPECT_EQ(ThreadFaults::startCount(), kStripeCount);

    std::vector<std::string> expected, texts;
    if (mask != 0) expected.emplace_back("[FILTER_LOG] pthread_create error!\n");
    for (int k = 0; k < kStripeCount; ++k) {
      const bool missing = (mask >> k & 1u) != 0;
      EXPECT_EQ(visits[k], missing ? 0 : 1);
      if (missing) expected.push_back("[FILTER_LOG]  Error threadID = " + std::to_string(k) + "!");
    }
    for (const CapturedLog::Line& line : log.lines()) {
      EXPECT_EQ(line.priority, 6);
      EXPECT_EQ(line.tag, "filter");
      texts.push_back(line.text);
    }
    EXPECT_EQ(texts, expected);
  }
}

}  // namespace
}  // namespace lumora::test
