// What a run of `lumora apply` tells of its pictures: to people on standard error, to programs as
// JSON lines on standard output.
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "apply_plan.h"
#include "batch.h"
#include "output.h"

namespace lumora::tool {

struct ReportSettings {
  bool json = false;
  bool dryRun = false;
  bool verbose = false;
};

// Of one picture, as far as it came.
struct PictureResult {
  unsigned width = 0;
  unsigned height = 0;
  double decodeMs = 0;
  double filterMs = 0;
  double encodeMs = 0;
  std::size_t bytes = 0;  // of the output
  std::string warning;
  std::string error;
};

class Report {
 public:
  // The looks are those that the planned pictures have the numbers of.
  Report(const ReportSettings& settings, std::vector<std::string> looks);

  // What is to be told of a picture. Any number of threads at a time.
  Outcome describe(const PlannedPicture& picture, const PictureResult& result) const;
  // Tells it. One thread at a time.
  void tell(const Outcome& outcome, Progress& progress);
  void tellSkipped(const std::vector<PlannedPicture>& skipped);
  void tellSummary(std::size_t skipped, Progress& progress);

  // Of everything that was told.
  int exitCode(std::size_t skipped) const;

 private:
  std::string jsonLine(const PlannedPicture& picture, const char* state,
                       const PictureResult& result) const;

  const ReportSettings settings_;
  const std::vector<std::string> looks_;
  std::unique_ptr<Output> listing_;  // for programs; null without one
  std::size_t total_ = 0;
  std::size_t failed_ = 0;
  const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

}  // namespace lumora::tool
