// How the library's workers run in the fuzz targets.
#pragma once

namespace lumora::fuzz {

// Starting four threads takes longer than most of what they do, so while this lives they run where
// they are started, one after the other, unless the input asks for threads.
class Workers {
 public:
  explicit Workers(bool asThreads);
  ~Workers();
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;
};

}  // namespace lumora::fuzz
