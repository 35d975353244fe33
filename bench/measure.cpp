#include "measure.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

namespace lumora::bench {
namespace {

// Rounds of well below a millisecond are repeated until they fill this time, so that a measurement
// of a small picture is not one scheduling accident.
constexpr double kLeastSeconds = 0.1;
constexpr std::size_t kMostRounds = 501;

// Rounds in which the kernel gave this thread's processor to somebody else are repeated, so that
// figures from a busy machine mean something; at most this many times as often as they count.
constexpr std::size_t kMostRepeats = 2;

std::size_t atLeast = 21;
bool byProcessorTime = false;

double now() {
  timespec time;
  clock_gettime(byProcessorTime ? CLOCK_THREAD_CPUTIME_ID : CLOCK_MONOTONIC, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

template <class Function>
double secondsOf(const Function& function) {
  const double start = now();
  function();
  return now() - start;
}

long lostProcessor() {
  rusage usage;
  getrusage(RUSAGE_THREAD, &usage);
  return usage.ru_nivcsw;
}

double medianOf(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

double leastOf(const std::vector<double>& values) {
  return *std::min_element(values.begin(), values.end());
}

// The four-threaded NV12 step writes two lines to standard output, where the report is going.
class MutedOutput {
 public:
  MutedOutput() {
    std::fflush(stdout);
    kept_ = dup(STDOUT_FILENO);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(nowhere, STDOUT_FILENO);
    close(nowhere);
  }
  ~MutedOutput() {
    std::fflush(stdout);
    dup2(kept_, STDOUT_FILENO);
    close(kept_);
  }
  MutedOutput(const MutedOutput&) = delete;
  MutedOutput& operator=(const MutedOutput&) = delete;

 private:
  int kept_;
};

}  // namespace

void setLeastRounds(int rounds) { atLeast = static_cast<std::size_t>(std::max(rounds, 1)); }
void useProcessorTime() { byProcessorTime = true; }
bool usesProcessorTime() { return byProcessorTime; }
int leastRounds() { return static_cast<int>(atLeast); }

Figures measure(const Round& round) {
  const MutedOutput muted;
  std::vector<double> references, operations, ratios;
  std::size_t repeats = 0;
  double spent = 0;
  Figures figures{};
  for (bool warm = false;
       ratios.size() < atLeast || (spent < kLeastSeconds && ratios.size() < kMostRounds);
       warm = true) {
    if (round.restore) round.restore();
    const long lost = lostProcessor();
    const double reference = secondsOf(round.reference);
    const double operation = secondsOf([&] { figures.status = round.operation(); });
    if (figures.status != 0) return figures;
    if (!warm) continue;
    if (!byProcessorTime && lostProcessor() != lost && repeats < kMostRepeats * atLeast) {
      ++repeats;
      continue;
    }
    references.push_back(reference);
    operations.push_back(operation);
    ratios.push_back(operation / reference);
    spent += reference + operation;
  }
  figures.seconds = medianOf(operations);
  figures.bestSeconds = leastOf(operations);
  figures.referenceSeconds = medianOf(references);
  figures.ratio = medianOf(ratios);
  figures.leastRatio = leastOf(ratios);
  figures.mostRatio = *std::max_element(ratios.begin(), ratios.end());
  figures.bestRatio = leastOf(operations) / leastOf(references);
  return figures;
}

}  // namespace lumora::bench
