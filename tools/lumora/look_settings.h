// Which look, how strong, and the settings of the modes that have some, as options.
#pragma once

#include <string>
#include <vector>

#include "host/settings.h"
#include "modes.h"
#include "options.h"

namespace lumora::tool {

// A level, or per cent of a look's full effect.
struct Strength {
  int number = LUMORA_FULL_STRENGTH;
  bool isPercent = false;

  // The level for a look; without one for mixing. Throws a UsageError for more or less per cent
  // than it can do.
  int levelOn(const Mode* mode) const;
  // As it was given: "8", "75%".
  std::string name() const;
};

struct LookSettings {
  const Mode* mode = nullptr;
  Strength strength;  // becomes the values' by settleLook()
  host::Settings values;
  std::string maskFile;  // to be read into the values
  std::vector<Setting> given;
};

Strength parseStrength(const std::string& value);

OptionGroup lookOptions(LookSettings& settings);
OptionGroup modeOptions(LookSettings& settings);
Option seedOption(std::optional<std::uint32_t>& seed);
std::vector<Setting> settingsOf(const Mode& mode);
// The options that only this mode takes, to be listed.
std::vector<Option> optionsOf(const Mode& mode);

// What only the whole command line shows: a look is named, and every option belongs to it. Sets the
// strength of the values.
void settleLook(LookSettings& settings);
// The same for each of several looks: every option belongs to one of them at least.
std::vector<LookSettings> settleLooks(const LookSettings& settings,
                                      const std::vector<const Mode*>& modes);

}  // namespace lumora::tool
