// The progress bar of a batch: count, pictures per second and time left.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace lumora::tool {

// Shows nothing when it is not wanted or standard error is no terminal. One thread at a time.
class Progress {
 public:
  Progress(std::size_t total, bool wanted);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress();  // the bar stays as it stands, on a line of its own

  void countOne();
  // Whole lines for standard error, above the bar.
  void print(const std::string& lines);

 private:
  using Clock = std::chrono::steady_clock;

  void draw();

  const std::size_t total_;
  const bool shown_;
  std::size_t done_ = 0;
  const Clock::time_point start_ = Clock::now();
  Clock::time_point lastDrawn_{};
};

}  // namespace lumora::tool
