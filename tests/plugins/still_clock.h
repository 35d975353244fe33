// The film look draws its marks from the time of day: in programs that include this, once, it
// stands still, for modules that they load too.
#pragma once

#include <sys/time.h>

extern "C" __attribute__((visibility("default"))) int gettimeofday(timeval* now, void*) noexcept {
  *now = {1234, 5678};
  return 0;
}
