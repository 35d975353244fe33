// The heap of documents, which counts and refuses blocks.
#pragma once

namespace lumora::test {

// While it lives, documents have their memory from it. One at a time, one thread.
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
};

}  // namespace lumora::test
