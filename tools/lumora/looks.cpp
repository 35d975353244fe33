// lumora looks: the table of modes.
#include <iomanip>
#include <iostream>

#include "commands.h"
#include "errors.h"
#include "modes.h"
#include "options.h"

namespace lumora::tool {
namespace {

void printRow(const std::string& number, const char* name, const char* kind, const char* summary,
              const char* texture) {
  std::cout << std::left << std::setw(5) << number << std::setw(16) << name << std::setw(15) << kind
            << std::setw(45) << summary << texture << '\n';
}

// Who uses the strength otherwise than most looks do.
void printStrengths() {
  using enum StrengthUse;
  std::cout << "\nStrength: " << describe(kBlendAndCurves) << ".\n";
  for (const StrengthUse use : {kOwn, kBlend, kBlurLevel, kUnused}) {
    const char* lead = "  ";
    for (const Mode& mode : modes()) {
      if (mode.strength != use) continue;
      std::cout << lead << mode.name;
      lead = ", ";
    }
    std::cout << ": " << describe(use) << ".\n";
  }
}

void printTable() {
  printRow("Mode", "Name", "Kind", "What it does", "Texture");
  for (const Mode& mode : modes()) {
    printRow(std::to_string(mode.number), mode.name, mode.kind, mode.summary,
             mode.texture ? mode.texture : "-");
  }
  printStrengths();
  std::cout << "\nEvery look takes rgba, nv21 and nv12 pictures; colour-fix takes rgba only.\n";
}

// The texts are the table's own and hold nothing that would need escaping.
void printJson() {
  const auto quoted = [](const char* value) {
    return value ? text('"', value, '"') : std::string("null");
  };
  const char* separator = "[\n";
  for (const Mode& mode : modes()) {
    std::cout << separator << "  {\"mode\": " << mode.number << ", \"name\": " << quoted(mode.name)
              << ", \"kind\": " << quoted(mode.kind) << ", \"summary\": " << quoted(mode.summary)
              << ", \"texture\": " << quoted(mode.texture)
              << ", \"strength\": " << quoted(describe(mode.strength)) << ", \"formats\": "
              << (mode.rgbaOnly ? R"(["rgba"])" : R"(["rgba", "nv21", "nv12"])") << "}";
    separator = ",\n";
  }
  std::cout << "\n]\n";
}

}  // namespace

int looksCommand(int argc, char** argv) {
  bool json = false;
  const auto operands = readCommandLine(
      {"lumora looks [--json]",
       "Lists the twenty modes: number, name, kind, what each does, what the strength means and\n"
       "which texture it takes from the pack.\n",
       {{"Options", {{"json", 0, nullptr, "the same as a JSON array", raise(json)}}}},
       nullptr},
      argc, argv);
  if (!operands) return kExitDone;
  if (!operands->empty()) throw UsageError("looks takes no operands");
  json ? printJson() : printTable();
  return kExitDone;
}

}  // namespace lumora::tool
