// The four-worker fan-out: every multi-threaded step cuts its work into four stripes and runs them
// on four POSIX threads that are joined before the step returns. Nothing else starts threads.
#pragma once

#include <pthread.h>

#include <array>
#include <cstdint>

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
  // Runs routine(record) on one thread per record and joins them all. When a thread cannot be
  // started: logs failureFormat and the number of each missing worker, lets the started ones finish
  // and returns kThreadFailed.
  template <class Record>
  static Status run(void (*routine)(const Record&), const std::array<Record, kStripeCount>& records,
                    const char* failureFormat = kThreadFailure) {
    std::array<Worker, kStripeCount> workers;
    std::array<Task<Record>, kStripeCount> tasks;
    for (int k = 0; k < kStripeCount; ++k) {
      tasks[k] = {routine, &records[k]};
      workers[k] = {&Task<Record>::enter, &tasks[k]};
    }
    return runWorkers(workers, failureFormat);
  }

  // Replaces pthread_create, so that tests can make a start fail; null restores it.
  using ThreadStart = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
  static void setThreadStart(ThreadStart start);

 private:
  struct Worker {
    void* (*enter)(void*);
    void* argument;
  };
  template <class Record>
  struct Task {
    void (*routine)(const Record&);
    const Record* record;
    static void* enter(void* argument) {
      const auto* task = static_cast<const Task*>(argument);
      task->routine(*task->record);
      return nullptr;
    }
  };
  static Status runWorkers(const std::array<Worker, kStripeCount>& workers,
                           const char* failureFormat);
};

}  // namespace lumora
