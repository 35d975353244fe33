// lumora-bench: every operation of the library against the in-place limit of the same process.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "cases.h"
#include "host.h"
#include "limit.h"
#include "measure.h"
#include "pictures.h"

using namespace lumora;
using namespace lumora::bench;

namespace {

struct Options {
  bool all = false;
  std::string level;
  std::string resources = LUMORA_BENCH_RESOURCES;
};

void printHelp() {
  std::puts(
      "lumora-bench [--all] [--level NAME] [--rounds N] [--resources DIR] [--benchmark_...]\n"
      "\n"
      "Every line is one operation, measured in rounds of a limit pass (one thread XORs every "
      "byte\n"
      "of the same picture in place) and the operation:\n"
      "  Time      median of the operation\n"
      "  x_limit   median over the rounds of operation / limit\n"
      "  x_best    fastest operation / fastest limit\n"
      "  x_default as x_limit, with the library's default allocator; work that asks for memory\n"
      "  x_fill    initialisation with it / filling a fresh block of the handle's size\n"
      "The host's allocator keeps released blocks, so the first columns show no page faults.\n"
      "\n"
      "  --all            every mode, format, size, strength, thread count; without it the cases\n"
      "                   that have targets (a --benchmark_filter selects from all)\n"
      "  --level NAME     vector level, or \"best\"; avx2 by default on x86-64, where targets are "
      "set\n"
      "  --rounds N       rounds at least (21)\n"
      "  --cpu-time       one-thread cases by processor time: for development on a busy machine\n"
      "  --resources DIR  directory of mixIm.dat; a pack of noise where there is none\n"
      "\n");
  benchmark::PrintDefaultHelp();
}

int levelOf(const std::string& name) {
  for (int level = 0; level < kVectorLevelCount; ++level) {
    if (name == vectorLevelName(level)) return vectorLevelSupported(level) ? level : -1;
  }
  return -1;
}

void chooseLevel(const std::string& name) {
  if (name == "best") return;
  const int level = levelOf(name.empty() ? "avx2" : name);
  if (level < 0 && !name.empty()) {
    std::fprintf(stderr, "lumora-bench: no level %s on this processor\n", name.c_str());
    std::exit(2);
  }
  forceVectorLevel(level);
}

Options parseOptions(int argc, char** argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    const std::string option = argv[i];
    const char* const value = i + 1 < argc ? argv[i + 1] : nullptr;
    if (option == "--all") {
      options.all = true;
    } else if (option == "--cpu-time") {
      useProcessorTime();
    } else if (option == "--level" && value != nullptr) {
      options.level = argv[++i];
    } else if (option == "--resources" && value != nullptr) {
      options.resources = argv[++i];
    } else if (option == "--rounds" && value != nullptr) {
      setLeastRounds(std::atoi(argv[++i]));
    } else {
      std::fprintf(stderr, "lumora-bench: %s? (--help)\n", option.c_str());
      std::exit(2);
    }
  }
  return options;
}

std::string decimals(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", value);
  return text;
}

std::string processorName() {
  std::ifstream file("/proc/cpuinfo");
  for (std::string line; std::getline(file, line);) {
    const std::size_t colon = line.find(": ");
    if (line.rfind("model name", 0) == 0 && colon != std::string::npos) {
      return line.substr(colon + 2);
    }
  }
  return "unknown";
}

void describeRun() {
  benchmark::AddCustomContext("processor", processorName());
#if defined(__clang__)
  benchmark::AddCustomContext("compiler", __VERSION__);
#else
  benchmark::AddCustomContext("compiler", "GCC " __VERSION__);
#endif
  benchmark::AddCustomContext("vector_level", vectorLevelName(vectorLevel()));
  benchmark::AddCustomContext("clock", usesProcessorTime() ? "processor time" : "wall");
  benchmark::AddCustomContext("rounds", std::to_string(leastRounds()));
}

// The limit must be what memory gives: an in-place addition takes as long within 10 %.
void reportLimit() {
  const TestPicture picture(kRgba, kTargetSize);
  const Figures add = measure({{},
                               [&] { picture.limitPass(); },
                               [&] {
                                 kAddPass()(picture.data(), picture.bytes);
                                 return std::uint32_t{0};
                               }});
  const double gigabytes = static_cast<double>(picture.bytes) / 1e9;
  benchmark::AddCustomContext("limit_GB/s", decimals(gigabytes / add.referenceSeconds));
  benchmark::AddCustomContext("in_place_add_GB/s", decimals(gigabytes / add.seconds));
  benchmark::AddCustomContext("in_place_add/limit", decimals(add.ratio));
  if (add.ratio < 0.9 || add.ratio > 1.1) {
    std::fprintf(stderr, "lumora-bench: the limit is off: an in-place addition takes %.2f of it\n",
                 add.ratio);
  }
}

}  // namespace

int main(int argc, char** argv) {
  // Defaults first, so that the command line can override them. One iteration is one measurement.
  std::vector<char*> arguments(argv, argv + argc);
  char leastTime[] = "--benchmark_min_time=0";
  char table[] = "--benchmark_counters_tabular=true";
  arguments.insert(arguments.begin() + 1, {leastTime, table});
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data(), printHelp);
  const Options options = parseOptions(count, arguments.data());

  chooseLevel(options.level);
  setResourceDirectory(options.resources);
  registerAllCases(options.all || !benchmark::GetBenchmarkFilter().empty());
  addModeCases();
  addStepCases();
  addLutCases();
  addPeerCases();
  describeRun();
  reportLimit();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
