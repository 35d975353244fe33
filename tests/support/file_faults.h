// Steps of reading files - opening, seeking, asking for the position, reading - that fail.
#pragma once

#include <functional>

namespace lumora::test {

// One at a time, one thread.
class FileFaults {
 public:
  FileFaults();
  ~FileFaults();
  FileFaults(const FileFaults&) = delete;
  FileFaults& operator=(const FileFaults&) = delete;

  // The n-th step from now on fails (1 is the next, 0 none): a read comes up one byte short. Or
  // that step goes well, but something happens right before it.
  void failAt(int n) { happenAt(n, nullptr); }
  void happenAt(int n, std::function<void()> happens);
  // Whether that step was reached.
  bool hasHappened() const;
};

}  // namespace lumora::test
