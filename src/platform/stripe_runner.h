// The four-worker fan-out: every multi-threaded step cuts its work into four stripes and runs them
// on four POSIX threads that are joined before the step returns. Nothing else starts threads.
#pragma once

#include <array>
#include <cstdint>

#include "platform/picture.h"
#include "platform/status.h"

namespace lumora {

inline constexpr int kStripeCount = 4;

// A stripe's share of rows (or bytes): the half-open range [first, first + count).
struct Stripe {
  std::int64_t first;
  std::int64_t count;
};
using Stripes = std::array<Stripe, kStripeCount>;

// Rows of RGBA pictures: equal shares, the first rows mod 4 stripes take one row more.
Stripes splitRows(std::int64_t rows);
// Luma rows of NV pictures: shares of whole row pairs, the first (rows / 2) mod 4 stripes take one
// pair more. An odd last row belongs to no stripe.
Stripes splitRowPairs(std::int64_t rows);
// Bytes of the strength blend: three equal shares, the last stripe takes the rest.
Stripes splitBytes(std::int64_t bytes);
// Rows of a resampled texture: shares rounded up, so that the last stripes may be short or empty.
Stripes splitRoundedUp(std::int64_t rows);

// The message of a step whose worker could not be started.
inline constexpr const char* kThreadFailure = "[%s] pthread_create error!\n";
inline constexpr const char* kInitialisationThreadFailure = "[%s] \npthread_create error!";

class StripeRunner {
 public:
  // Runs work(stripe, k) for stripe k of four on a thread of its own and joins them all. When a
  // thread cannot be started: logs failureFormat and the number of each missing worker, lets the
  // started ones finish and returns kThreadFailed.
  template <class Work>
  static Status run(const Stripes& stripes, const Work& work,
                    const char* failureFormat = kThreadFailure) {
    std::array<Task<Work>, kStripeCount> tasks;
    std::array<void*, kStripeCount> arguments;
    for (int k = 0; k < kStripeCount; ++k) {
      tasks[k] = {&work, stripes[k], k};
      arguments[k] = &tasks[k];
    }
    return runWorkers(&Task<Work>::enter, arguments, failureFormat);
  }

 private:
  template <class Work>
  struct Task {
    const Work* work;
    Stripe stripe;
    int index;
    static void* enter(void* argument) {
      const auto* task = static_cast<const Task*>(argument);
      (*task->work)(task->stripe, task->index);
      return nullptr;
    }
  };
  static Status runWorkers(void* (*enter)(void*), const std::array<void*, kStripeCount>& arguments,
                           const char* failureFormat);
};

// Runs work(stripe, k) for every stripe of 0..total: on the four that `split` cuts, or on the whole
// as number 0 on the calling thread. Returns kOk or, on four, kThreadFailed.
template <class Work>
[[nodiscard]] Status overStripes(Threads threads, std::int64_t total,
                                 Stripes (*split)(std::int64_t total), const Work& work,
                                 const char* failureFormat = kThreadFailure) {
  if (threads == Threads::kFour) return StripeRunner::run(split(total), work, failureFormat);
  work(Stripe{0, total}, 0);
  return Status::kOk;
}

}  // namespace lumora
