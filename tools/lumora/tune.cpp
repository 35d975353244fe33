// lumora tune: the tuning document, written with the built-in values or checked.
#include <iostream>

#include "commands.h"
#include "config/tuning_text.h"
#include "errors.h"
#include "options.h"
#include "output.h"
#include "pipeline/mode_table.h"

namespace lumora::tool {
namespace {

const Knots* builtInCurvesOf(const TuningBlock& block) {
  return lumora::findMode(static_cast<std::uint32_t>(block.mode))->look().builtIn->plain;
}

void writeDefault(const std::vector<std::string>& operands) {
  const std::string document = tuningDocument(builtInCurvesOf);
  if (operands.empty()) {
    std::cout << document;
    return;
  }
  Output output(operands.front());
  output.write(document.data(), document.size());
  output.commit();
}

void check(const std::string& path) {
  FilterParams params;
  TuningReport report;
  const Status status = readFilterParams(params.bytes, path.c_str(), report);
  if (status != Status::kOk) throw UsageError(text(path, ": the path is too long"));
  if (!keepsDocument(report.document.status)) {
    throw ResourceError(
        text(path, ": ", describeDocument(report), "; every look would have its built-in values"));
  }
  std::cout << path << ": " << describeDocument(report) << '\n';
  for (int block = 0; block < kTuningBlockCount; ++block) {
    const TuningBlock& known = kTuningBlocks[block];
    std::cout << "  filter" << known.letter << "  " << known.look
              << std::string(16 - std::string_view(known.look).size(), ' ')
              << describeBlock(report, block) << '\n';
  }
}

}  // namespace

int tuneCommand(int argc, char** argv) {
  bool isDefault = false;
  std::string toCheck;
  const auto operands = readCommandLine(
      {"lumora tune --default [OUT.xml]\nlumora tune --check FILE.xml",
       "Writes a tuning document with the looks' built-in values, to start one's own from, or "
       "tells\n"
       "for each look whether a document's values are in use and, if not, why.\n",
       {{"Options",
         {{"default", 0, nullptr, "write the built-in values; without OUT.xml to standard output",
           raise(isDefault)},
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
  isDefault ? writeDefault(*operands) : check(toCheck);
  return kExitDone;
}

}  // namespace lumora::tool
