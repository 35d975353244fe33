// lumora tune: the tuning document, written with the built-in values or checked.
#include <iomanip>
#include <iostream>

#include "commands.h"
#include "errors.h"
#include "options.h"
#include "output.h"
#include "pipeline/mode_table.h"
#include "resources.h"
#include "tuning_text/tuning_text.h"

namespace lumora::tool {
namespace {

const Knots* builtInCurvesOf(const TuningBlock& block) {
  return lumora::findMode(modeOf(block).number)->look().builtIn->plain;
}

void writeDefault(const std::vector<std::string>& operands, bool force) {
  const std::string document = tuningDocument(builtInCurvesOf);
  if (operands.empty()) {
    std::cout << document;
    return;
  }
  Output output(operands.front(), {.force = force});
  output.finish(document.data(), document.size());
}

void check(const std::string& path) {
  const TuningReport report = readTuning(path, path);
  std::cout << path << ": " << describeDocument(report) << '\n';
  for (int block = 0; block < kTuningBlockCount; ++block) {
    const TuningBlock& known = kTuningBlocks[block];
    std::cout << "  filter" << known.letter << "  " << std::left << std::setw(16)
              << modeOf(known).name << describeBlock(report, block) << '\n';
  }
}

}  // namespace

int tuneCommand(int argc, char** argv) {
  bool isDefault = false;
  bool force = false;
  std::string toCheck;
  const auto operands = readCommandLine(
      {"lumora tune --default [--force] [OUT.xml]\nlumora tune --check FILE.xml",
       "Writes a tuning document with the looks' built-in values, to start one's own from, or "
       "tells\n"
       "for each look whether a document's values are in use and, if not, why.\n",
       {{"Options",
         {{"default", 0, nullptr, "write the built-in values; without OUT.xml to standard output",
           raise(isDefault)},
          forceOption(force),
          {"check", 0, "FILE.xml", "tell what a document changes", keep(toCheck)}}}},
       "  lumora tune --default my-looks.xml\n"
       "  lumora tune --check my-looks.xml\n"
       "  lumora apply --look rixi --params my-looks.xml photo.jpg out.jpg\n"},
      argc, argv);
  if (!operands) return kExitDone;
  if (isDefault == !toCheck.empty()) throw UsageError("one of --default and --check is needed");
  if (operands->size() > (isDefault ? 1u : 0u)) {
    throw UsageError(text("there is nothing to do with '", operands->back(), "'"));
  }
  isDefault ? writeDefault(*operands, force) : check(toCheck);
  return kExitDone;
}

}  // namespace lumora::tool
