#include "look_settings.h"

#include <algorithm>
#include <climits>

#include "errors.h"
#include "words.h"

namespace lumora::tool {
namespace {

void require(const host::Result& result) {
  if (!result) throw UsageError(result.message);
}

std::vector<int> parseColour(const std::string& value) {
  const std::string digits = value.starts_with('#') ? value.substr(1) : value;
  if (digits.size() != 6 || digits.find_first_not_of("0123456789abcdefABCDEF") != digits.npos) {
    throw UsageError(text("'", value, "' is not a colour of the form '#rrggbb'"));
  }
  const int rgb = std::stoi(digits, nullptr, 16);
  return {rgb >> 16, rgb >> 8 & 255, rgb & 255};
}

// Takes the text of a setting.
void accept(LookSettings& settings, Setting setting, const std::string& value) {
  settings.given.push_back(setting);
  if (setting == kMask) {
    settings.maskFile = value;
    return;
  }
  const SettingFacts& facts = kSettings[setting];
  const std::vector<int> numbers =
      setting == kColour
          ? parseColour(value)
          : parseIntegers(value, ',', static_cast<std::size_t>(facts.numbers), facts.value);
  require(host::give(settings.values, setting, numbers));
}

Option optionOf(Setting setting) {
  const SettingFacts& facts = kSettings[setting];
  return {facts.name, 0, facts.value, facts.help, nullptr};
}

}  // namespace

int parseStrength(const std::string& value) {
  const int strength = parseInteger(value, INT_MIN, INT_MAX);
  if (strength >= 0 && strength <= LUMORA_STRONGEST) return strength;
  throw UsageError(text(strength, " is outside 0..", LUMORA_STRONGEST, " (",
                        describe(StrengthUse::kBlendAndCurves), ")"));
}

OptionGroup lookOptions(LookSettings& s) {
  return {"Look",
          {{"look", 'l', "NAME|MODE", "the look, by name or number; 'lumora looks' lists them",
            [&s](const std::string& v) { s.mode = &findMode(v); }},
           {"strength", 's', "0..32",
            "0 half effect, 16 full effect (the default), 17..32\n"
            "stronger; for blur and tilt-shift the width of the blur,\n"
            "0 for none",
            [&s](const std::string& v) { s.values.strength = parseStrength(v); }},
           seedOption(s.values.seed),
           {"single-thread", 0, nullptr, "filter without starting threads",
            raise(s.values.singleThread)}}};
}

std::vector<Setting> settingsOf(const Mode& mode) {
  std::vector<Setting> settings;
  for (int i = 0; i < kSettingCount; ++i) {
    if (mode.reads(static_cast<Setting>(i))) settings.push_back(static_cast<Setting>(i));
  }
  return settings;
}

OptionGroup modeOptions(LookSettings& s) {
  OptionGroup group{"Settings of single looks (positions in pixels of the upright picture)", {}};
  for (const Mode& mode : kModes) {
    for (const Setting setting : settingsOf(mode)) {
      Option option = optionOf(setting);
      option.help = text(mode.name, ": ", option.help);
      option.accept = [&s, setting](const std::string& v) { accept(s, setting, v); };
      group.options.push_back(std::move(option));
    }
  }
  return group;
}

Option seedOption(std::optional<std::uint32_t>& seed) {
  return {"seed", 0, "N",
          "laodianying: put the film's marks at the same places in every\n"
          "run, in raw frames at those of N, N + 1, and so on",
          [&seed](const std::string& v) {
            seed = static_cast<std::uint32_t>(parseInteger(v, 0, INT_MAX));
          }};
}

std::vector<Option> optionsOf(const Mode& mode) {
  std::vector<Option> options;
  for (const Setting setting : settingsOf(mode)) options.push_back(optionOf(setting));
  return options;
}

void checkLookSettings(const LookSettings& settings) {
  if (settings.mode == nullptr) {
    throw UsageError("no look is named; use --look NAME ('lumora looks' lists them)");
  }
  for (const Setting setting : settings.given) {
    if (settings.mode->reads(setting)) continue;
    const auto owner =
        std::find_if(kModes.begin(), kModes.end(), [&](const Mode& m) { return m.reads(setting); });
    throw UsageError(text("--", kSettings[setting].name, " belongs to the look ", owner->name,
                          ", not ", settings.mode->name));
  }
  require(host::checkComplete(*settings.mode, settings.values));
}

}  // namespace lumora::tool
