// The library's log as the tests see it: the test programs define __android_log_print themselves.
#pragma once

#include <string>
#include <vector>

namespace lumora::test {

// Collects every message from its construction to its destruction. One at a time.
class CapturedLog {
 public:
  struct Line {
    int priority;
    std::string tag;
    std::string format;
    std::string text;  // with the arguments filled in
  };

  CapturedLog();
  ~CapturedLog();
  CapturedLog(const CapturedLog&) = delete;
  CapturedLog& operator=(const CapturedLog&) = delete;

  std::vector<Line> lines() const;
  // The formats of the error messages in their order.
  std::vector<std::string> errors() const;
  void clear();
};

}  // namespace lumora::test
