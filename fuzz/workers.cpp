#include "workers.h"

#include <pthread.h>

#include "support/thread_faults.h"

namespace lumora::fuzz {
namespace {

int runOnCaller(pthread_t* thread, const pthread_attr_t*, void* (*enter)(void*), void* argument) {
  *thread = pthread_self();
  enter(argument);
  return 0;
}

}  // namespace

Workers::Workers(bool asThreads) { test::setThreadStarter(asThreads ? nullptr : runOnCaller); }

Workers::~Workers() { test::setThreadStarter(nullptr); }

}  // namespace lumora::fuzz

extern "C" int __real_pthread_join(pthread_t thread, void** result);

// What ran on the calling thread has ended.
extern "C" int __wrap_pthread_join(pthread_t thread, void** result) {
  if (pthread_equal(thread, pthread_self()) != 0) return 0;
  return __real_pthread_join(thread, result);
}
