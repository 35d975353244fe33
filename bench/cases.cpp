#include "cases.h"

#include <benchmark/benchmark.h>

#include <stdexcept>

#include "host.h"

namespace lumora::bench {
namespace {

bool registersAll = false;

// Work that the calling thread's processor time does not tell all about.
bool usesThreads(const std::string& name) {
  for (const char* part : {"/t4", "init/", "threads/"}) {
    if (name.find(part) != std::string::npos) return true;
  }
  return false;
}

void refuse(benchmark::State& state, const Figures& figures) {
  const std::string why = "status " + std::to_string(figures.status) + " " + firstLogLine();
  state.SkipWithError(why.c_str());
}

void reportSecond(benchmark::State& state, const SecondColumn& second) {
  const Figures figures = measure(second.round);
  if (figures.status != 0) return;
  state.counters[std::string("x_") + second.name] = figures.ratio;
  state.counters[std::string("ms_") + second.name] = 1e3 * figures.seconds;
}

void runCase(benchmark::State& state, const Subject& subject) {
  for ([[maybe_unused]] auto iteration : state) {
    clearLog();
    const std::int64_t requestsBefore = reusedRequests();
    const Figures figures = measure(subject.round);
    if (figures.status != 0) return refuse(state, figures);
    const bool allocates = reusedRequests() > requestsBefore;
    state.SetIterationTime(figures.seconds);
    state.counters["x_limit"] = figures.ratio;
    state.counters["x_best"] = figures.bestRatio;
    state.counters["ms_best"] = 1e3 * figures.bestSeconds;
    state.counters["ms_limit"] = 1e3 * figures.referenceSeconds;
    if (subject.pixels > 0) state.counters["Mpx/s"] = subject.pixels / figures.seconds / 1e6;
    const SecondColumn& second = subject.second;
    if (second.name != nullptr && (allocates || !second.onlyIfAllocating)) {
      reportSecond(state, second);
    }
  }
}

}  // namespace

void registerAllCases(bool all) { registersAll = all; }

void addCase(const std::string& name, bool quick, MakeSubject make) {
  if (!quick && !registersAll) return;
  if (usesProcessorTime() && usesThreads(name)) return;
  const auto run = [make = std::move(make)](benchmark::State& state) {
    try {
      runCase(state, make());
    } catch (const std::exception& error) {
      state.SkipWithError(error.what());
    }
  };
  // One iteration is a whole measurement, and its time the median of its rounds.
  benchmark::RegisterBenchmark(name.c_str(), run)->UseManualTime()->Unit(benchmark::kMillisecond);
}

Round pictureRound(const std::shared_ptr<TestPicture>& picture, PictureWork work) {
  return {[picture] { picture->restore(); }, [picture] { picture->limitPass(); }, std::move(work)};
}

}  // namespace lumora::bench
