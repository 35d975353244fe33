// A time of day that stands still.
#pragma once

namespace lumora::test {

// While it lives, gettimeofday gives the first second with these microseconds. One at a time.
class FixedClock {
 public:
  explicit FixedClock(long microseconds);
  ~FixedClock();
  FixedClock(const FixedClock&) = delete;
  FixedClock& operator=(const FixedClock&) = delete;
};

}  // namespace lumora::test
