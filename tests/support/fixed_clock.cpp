#include "support/fixed_clock.h"

#include <sys/time.h>

#include <atomic>

extern "C" int __real_gettimeofday(timeval* now, void* zone);

namespace lumora::test {
namespace {

constexpr long kRunning = -1;
std::atomic<long> fixedMicroseconds{kRunning};

}  // namespace

FixedClock::FixedClock(long microseconds) { fixedMicroseconds = microseconds; }

FixedClock::~FixedClock() { fixedMicroseconds = kRunning; }

}  // namespace lumora::test

extern "C" int __wrap_gettimeofday(timeval* now, void* zone) {
  const long microseconds = lumora::test::fixedMicroseconds;
  if (microseconds == lumora::test::kRunning) return __real_gettimeofday(now, zone);
  *now = {0, microseconds};
  return 0;
}
