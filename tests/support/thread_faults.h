// Thread starts that fail on demand, or go another way.
#pragma once

#include <pthread.h>

#include <cerrno>
#include <cstdint>

namespace lumora::test {

using ThreadStart = int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);

// Stands in for pthread_create in everything but the shared libraries; null for nothing.
void replaceThreadStart(ThreadStart start);
// What then starts the threads that do start: pthread_create, unless something else was given last
// (null for it again).
void setThreadStarter(ThreadStart start);
int startThread(pthread_t* thread, const pthread_attr_t* attributes, void* (*enter)(void*),
                void* argument);

// While it lives, the starts numbered in the mask fail: bit n is the (n + 1)-th start, and bit 63
// every one from there on.
class ThreadFaults {
 public:
  explicit ThreadFaults(std::uint64_t mask) {
    faults = mask;
    starts = 0;
    replaceThreadStart(start);
  }
  ~ThreadFaults() { replaceThreadStart(nullptr); }
  ThreadFaults(const ThreadFaults&) = delete;
  ThreadFaults& operator=(const ThreadFaults&) = delete;

  static int startCount() { return starts; }

 private:
  static int start(pthread_t* thread, const pthread_attr_t* attributes, void* (*enter)(void*),
                   void* argument) {
    const bool fails = (faults >> (starts < 63 ? starts : 63) & 1u) != 0;
    ++starts;
    return fails ? EAGAIN : startThread(thread, attributes, enter, argument);
  }
  static inline std::uint64_t faults = 0;
  static inline int starts = 0;
};

}  // namespace lumora::test
