// Numbered jobs on several threads, reported in the order of their numbers: what a batch prints
// does not depend on how many threads it has.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "progress.h"

namespace lumora::tool {

struct Outcome {
  bool failed = false;
  std::string report;   // whole lines for standard error; may be empty
  std::string listing;  // and for standard output
};

// Does one job. An exception ends the batch.
using Worker = std::function<Outcome(std::size_t job)>;

// Tells of a job that is done: in the order of the jobs, one at a time.
using Teller = std::function<void(const Outcome&)>;

// Shares the jobs among the workers, each in a thread of its own.
void runBatch(std::size_t jobs, const std::vector<Worker>& workers, Progress& progress,
              const Teller& tell);

}  // namespace lumora::tool
