// Thread starts that fail on demand.
#pragma once

#include <cerrno>
#include <cstdint>

#include "pipeline/stripe_runner.h"

namespace lumora::test {

// While it lives, the starts numbered in the mask fail: bit n is the (n + 1)-th start, and bit 63
// every one from there on.
class ThreadFaults {
 public:
  explicit ThreadFaults(std::uint64_t mask) {
    faults = mask;
    starts = 0;
    StripeRunner::setThreadStart(start);
  }
  ~ThreadFaults() { StripeRunner::setThreadStart(nullptr); }
  ThreadFaults(const ThreadFaults&) = delete;
  ThreadFaults& operator=(const ThreadFaults&) = delete;

  static int startCount() { return starts; }

 private:
  static int start(pthread_t* thread, const pthread_attr_t* attributes, void* (*enter)(void*),
                   void* argument) {
    const bool fails = (faults >> (starts < 63 ? starts : 63) & 1u) != 0;
    ++starts;
    return fails ? EAGAIN : pthread_create(thread, attributes, enter, argument);
  }
  static inline std::uint64_t faults = 0;
  static inline int starts = 0;
};

}  // namespace lumora::test
