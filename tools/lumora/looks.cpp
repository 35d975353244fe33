// lumora looks: the table of modes.
#include <iomanip>
#include <iostream>

#include "commands.h"
#include "errors.h"
#include "modes.h"
#include "options.h"

namespace lumora::tool {
namespace {

void printTable() {
  std::cout << std::left;
  const auto row = [](const auto& number, const char* name, const char* kind, const char* summary) {
    std::cout << std::setw(6) << number << std::setw(16) << name << std::setw(15) << kind << summary
              << '\n';
  };
  row("Mode", "Name", "Kind", "What it does");
  for (const Mode& mode : modes()) {
    row(mode.number, mode.name, mode.kind, mode.summary);
    std::cout << std::string(37, ' ') << "strength: " << describe(mode.strength);
    if (mode.texture != nullptr) std::cout << "; texture: " << mode.texture;
    if (mode.rgbaOnly) std::cout << "; rgba only";
    std::cout << '\n';
  }
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
