#include "support/thread_faults.h"

#include <atomic>

extern "C" int __real_pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                                     void* (*enter)(void*), void* argument);

namespace lumora::test {
namespace {

std::atomic<ThreadStart> replacement{nullptr};
std::atomic<ThreadStart> starter{nullptr};

}  // namespace

void replaceThreadStart(ThreadStart start) { replacement.store(start); }

void setThreadStarter(ThreadStart start) { starter.store(start); }

int startThread(pthread_t* thread, const pthread_attr_t* attributes, void* (*enter)(void*),
                void* argument) {
  const ThreadStart start = starter.load();
  return (start != nullptr ? start : &__real_pthread_create)(thread, attributes, enter, argument);
}

}  // namespace lumora::test

extern "C" int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                                     void* (*enter)(void*), void* argument) {
  using namespace lumora::test;
  const ThreadStart start = replacement.load();
  return (start != nullptr ? start : &startThread)(thread, attributes, enter, argument);
}
