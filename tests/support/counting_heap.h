// The C heap, which counts and refuses blocks. Documents have their memory from it; what C++ and
// the shared libraries ask for does not count.
#pragma once

#include <cstddef>

namespace lumora::test {

// One at a time, one thread.
class CountingHeap {
 public:
  CountingHeap();
  ~CountingHeap();
  CountingHeap(const CountingHeap&) = delete;
  CountingHeap& operator=(const CountingHeap&) = delete;

  // Refuses the n-th request from now on (1 is the next, 0 none), and with `allAfter` all that
  // follow.
  void failAt(int n, bool allAfter = false);
  bool hasFailed() const;
  int requests() const;  // since the last failAt
  int liveBlocks() const;
  std::size_t peakBytes() const;  // as common heaps hand them out, since the last failAt
};

}  // namespace lumora::test
