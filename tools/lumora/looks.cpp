// lumora looks: the table of modes.
#include <algorithm>
#include <iomanip>
#include <iostream>

#include "commands.h"
#include "errors.h"
#include "look_settings.h"
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

std::string optionForm(const Option& option) {
  return option.argument ? text("--", option.name, ' ', option.argument) : text("--", option.name);
}

void printOptions() {
  std::cout << "\nOptions of single looks ('lumora looks NAME' explains them):\n";
  for (const Mode& mode : modes()) {
    std::string forms;
    for (const Option& option : optionsOf(mode)) {
      forms += text(forms.empty() ? "" : "  ", optionForm(option));
    }
    if (!forms.empty()) {
      std::cout << "  " << std::left << std::setw(13) << mode.name << forms << '\n';
    }
  }
}

void printTable() {
  printRow("Mode", "Name", "Kind", "What it does", "Texture");
  for (const Mode& mode : modes()) {
    printRow(std::to_string(mode.number), mode.name, mode.kind, mode.summary,
             mode.texture ? mode.texture : "-");
  }
  printStrengths();
  printOptions();
  std::cout << "\nEvery look takes rgba, nv21 and nv12 pictures; colour-fix takes rgba only.\n";
}

void printMode(const Mode& mode) {
  std::cout << mode.number << "  " << mode.name << ": " << mode.summary << "\n\n"
            << "Kind:     " << mode.kind << "\nTexture:  " << (mode.texture ? mode.texture : "none")
            << "\nStrength: " << describe(mode.strength)
            << "\nFormats:  " << (mode.rgbaOnly ? "rgba" : "rgba, nv21, nv12") << '\n';
  const std::vector<Option> options = optionsOf(mode);
  std::cout << (options.empty() ? "Options:  none of its own\n" : "Options:\n");
  for (const Option& option : options) printOption(std::cout, option);
}

// The texts are the tables' own; beside line breaks they hold nothing that would need escaping.
std::string quoted(const char* value) {
  if (value == nullptr) return "null";
  std::string line = value;
  std::replace(line.begin(), line.end(), '\n', ' ');
  return text('"', line, '"');
}

std::string optionsAsJson(const Mode& mode) {
  std::string list;
  for (const Option& option : optionsOf(mode)) {
    list += text(list.empty() ? "" : ", ", "{\"option\": \"--", option.name,
                 "\", \"value\": ", quoted(option.argument),
                 ", \"help\": ", quoted(option.help.c_str()), "}");
  }
  return text('[', list, ']');
}

void printJson(std::span<const Mode> listed) {
  const char* separator = "[\n";
  for (const Mode& mode : listed) {
    std::cout << separator << "  {\"mode\": " << mode.number << ", \"name\": " << quoted(mode.name)
              << ", \"kind\": " << quoted(mode.kind) << ", \"summary\": " << quoted(mode.summary)
              << ", \"texture\": " << quoted(mode.texture)
              << ", \"strength\": " << quoted(describe(mode.strength)) << ", \"formats\": "
              << (mode.rgbaOnly ? R"(["rgba"])" : R"(["rgba", "nv21", "nv12"])")
              << ", \"options\": " << optionsAsJson(mode) << "}";
    separator = ",\n";
  }
  std::cout << "\n]\n";
}

}  // namespace

int looksCommand(int argc, char** argv) {
  bool json = false;
  const auto operands = readCommandLine(
      {"lumora looks [--json] [NAME|MODE]",
       "Lists the twenty modes: number, name, kind, what each does, what the strength means, "
       "which\n"
       "texture it takes from the pack and which options. With a name: all about that one.\n",
       {{"Options", {{"json", 0, nullptr, "the same as a JSON array", raise(json)}}}},
       "  lumora looks\n"
       "  lumora looks tilt-shift\n"
       "  lumora looks --json | jq -r '.[] | select(.texture) | .name'\n"},
      argc, argv);
  if (!operands) return kExitDone;
  if (operands->size() > 1) throw UsageError("looks tells about one look at a time");
  if (operands->empty()) {
    json ? printJson(modes()) : printTable();
  } else {
    const Mode& mode = findMode(operands->front());
    json ? printJson({&mode, 1}) : printMode(mode);
  }
  return kExitDone;
}

}  // namespace lumora::tool
