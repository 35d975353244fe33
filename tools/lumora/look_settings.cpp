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

constexpr const char* kNoLook = "no look is named; use --look NAME ('lumora looks' lists them)";

// Every setting that was given is one of a look that was named.
void requireOwners(const std::vector<Setting>& given, const std::vector<const Mode*>& modes) {
  for (const Setting setting : given) {
    const auto reads = [setting](const Mode* mode) { return mode->reads(setting); };
    if (std::any_of(modes.begin(), modes.end(), reads)) continue;
    const auto owner =
        std::find_if(kModes.begin(), kModes.end(), [&](const Mode& m) { return m.reads(setting); });
    std::string named;
    for (const Mode* mode : modes) named += text(named.empty() ? "" : " or ", mode->name);
    throw UsageError(
        text("--", kSettings[setting].name, " belongs to the look ", owner->name, ", not ", named));
  }
}

Option optionOf(Setting setting) {
  const SettingFacts& facts = kSettings[setting];
  return {facts.name, 0, facts.value, facts.help, nullptr};
}

}  // namespace

int Strength::levelOn(const Mode* mode) const {
  if (!isPercent) return number;
  const StrengthUse use = mode != nullptr ? mode->strength : StrengthUse::kBlend;
  // Level 0 of a look that is mixed in shows half of it, of the others nothing or next to nothing.
  const bool isMixed = use == StrengthUse::kBlend || use == StrengthUse::kBlendAndCurves;
  const int least = isMixed ? 50 : 0, most = isMixed ? 150 : 200;
  if (number < least || number > most) {
    throw UsageError(text("--strength: ", number, "% is outside ", least, "%..", most, "%",
                          mode != nullptr ? text(" of ", mode->name) : ""));
  }
  const int steps = LUMORA_FULL_STRENGTH * (number - least);
  return (steps + (100 - least) / 2) / (100 - least);
}

std::string Strength::name() const { return text(number, isPercent ? "%" : ""); }

Strength parseStrength(const std::string& value) {
  if (value.ends_with('%')) {
    return {parseInteger(value.substr(0, value.size() - 1), 0, 200), true};
  }
  const int strength = parseInteger(value, INT_MIN, INT_MAX);
  if (strength >= 0 && strength <= LUMORA_STRONGEST) return {strength, false};
  throw UsageError(text(strength, " is outside 0..", LUMORA_STRONGEST, " (",
                        describe(StrengthUse::kBlendAndCurves), ")"));
}

OptionGroup lookOptions(LookSettings& s) {
  return {"Look",
          {{"look", 'l', "NAME|MODE", "the look, by name or number; 'lumora looks' lists them",
            [&s](const std::string& v) { s.mode = &findMode(v); }},
           {"strength", 's', "0..32|P%",
            "0 half effect, 16 full effect (the default), 17..32\n"
            "stronger; for blur and tilt-shift the width of the blur,\n"
            "0 for none; or per cent of the full effect: 75% is 8",
            [&s](const std::string& v) { s.strength = parseStrength(v); }},
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

void settleLook(LookSettings& settings) {
  if (settings.mode == nullptr) throw UsageError(kNoLook);
  requireOwners(settings.given, {settings.mode});
  settings.values.strength = settings.strength.levelOn(settings.mode);
  require(host::checkComplete(*settings.mode, settings.values));
}

std::vector<LookSettings> settleLooks(const LookSettings& settings,
                                      const std::vector<const Mode*>& modes) {
  if (modes.empty()) throw UsageError(kNoLook);
  requireOwners(settings.given, modes);
  std::vector<LookSettings> looks;
  for (const Mode* mode : modes) {
    LookSettings& look = looks.emplace_back(settings);
    look.mode = mode;
    std::erase_if(look.given, [mode](Setting setting) { return !mode->reads(setting); });
    if (!mode->reads(kMask)) look.maskFile.clear();
    settleLook(look);
  }
  return looks;
}

}  // namespace lumora::tool
