// lumora looks: the table of modes.
#include <algorithm>
#include <iomanip>
#include <iostream>
#include <nlohmann/json.hpp>
#include <span>

#include "commands.h"
#include "errors.h"
#include "look_settings.h"
#include "modes.h"
#include "options.h"
#include "resources/texture_pack.h"

namespace lumora::tool {
namespace {

using Json = nlohmann::ordered_json;

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
    for (const Mode& mode : kModes) {
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
  for (const Mode& mode : kModes) {
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
  for (const Mode& mode : kModes) {
    printRow(std::to_string(mode.number), mode.name, mode.kind, mode.summary,
             mode.texture ? mode.texture.words : "-");
  }
  printStrengths();
  printOptions();
  std::cout << "\nEvery look takes rgba, nv21 and nv12 pictures; colour-fix takes rgba only.\n";
}

void printMode(const Mode& mode) {
  std::cout << mode.number << "  " << mode.name << ": " << mode.summary << "\n\n"
            << "Kind:     " << mode.kind << "\nAlso:     " << (mode.alias ? mode.alias : "-")
            << "\nTexture:  " << (mode.texture ? mode.texture.words : "none")
            << "\nStrength: " << describe(mode.strength)
            << "\nFormats:  " << (mode.rgbaOnly ? "rgba" : "rgba, nv21, nv12") << '\n';
  const std::vector<Option> options = optionsOf(mode);
  std::cout << (options.empty() ? "Options:  none of its own\n" : "Options:\n");
  for (const Option& option : options) printOption(std::cout, option);
}

Json asJson(const char* text) { return text ? Json(text) : Json(nullptr); }

// A help text's line breaks are the terminal's.
std::string oneLine(std::string help) {
  std::replace(help.begin(), help.end(), '\n', ' ');
  return help;
}

Json asJson(const SettingFacts& setting) {
  Json json{{"option", text("--", setting.name)},
            {"value", setting.value},
            {"help", oneLine(setting.help)}};
  if (setting.numbers == 0) return json;
  json["numbers"] = setting.numbers;
  if (setting.highest < kAnyPlace) json["range"] = {setting.lowest, setting.highest};
  if (setting.standard != kNoStandard) json["default"] = setting.standard;
  return json;
}

Json asJson(const Mode& mode) {
  Json textures = Json::array(), options = Json::array();
  for (const PackImage& image : kPackImages) {
    if (&userOf(image) == &mode) textures.push_back(image.name);
  }
  for (const Setting setting : settingsOf(mode)) options.push_back(asJson(kSettings[setting]));
  return {{"mode", mode.number},
          {"name", mode.name},
          {"alias", asJson(mode.alias)},
          {"kind", mode.kind},
          {"summary", mode.summary},
          {"texture", asJson(mode.texture.words)},
          {"textures", textures},
          {"strength", describe(mode.strength)},
          {"blended", mode.isBlended()},
          {"tuning", mode.tuningGroup ? Json(text("filter", mode.tuningGroup)) : Json(nullptr)},
          {"formats", mode.rgbaOnly ? Json{"rgba"} : Json{"rgba", "nv21", "nv12"}},
          {"options", options}};
}

void printJson(std::span<const Mode> listed) {
  Json list = Json::array();
  for (const Mode& mode : listed) list.push_back(asJson(mode));
  std::cout << list.dump(2) << '\n';
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
    json ? printJson(kModes) : printTable();
  } else {
    const Mode& mode = findMode(operands->front());
    json ? printJson({&mode, 1}) : printMode(mode);
  }
  return kExitDone;
}

}  // namespace lumora::tool
