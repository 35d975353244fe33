// Which look, how strong, and the settings of the modes that have some, as options.
#pragma once

#include <string>
#include <vector>

#include "host/settings.h"
#include "modes.h"
#include "options.h"

namespace lumora::tool {

struct LookSettings {
  const Mode* mode = nullptr;
  host::Settings values;
  std::string maskFile;  // to be read into the values
  std::vector<Setting> given;
};

int parseStrength(const std::string& value);

OptionGroup lookOptions(LookSettings& settings);
OptionGroup modeOptions(LookSettings& settings);
Option seedOption(std::optional<std::uint32_t>& seed);
std::vector<Setting> settingsOf(const Mode& mode);
// The options that only this mode takes, to be listed.
std::vector<Option> optionsOf(const Mode& mode);

// What only the whole command line shows: a look is named, and every option belongs to it.
void checkLookSettings(const LookSettings& settings);

}  // namespace lumora::tool
