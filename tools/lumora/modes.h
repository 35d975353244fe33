// The modes as people name them.
#pragma once

#include <string>
#include <vector>

#include "modes/modes.h"

namespace lumora::tool {

using Mode = ModeFacts;

// Names and aliases.
std::vector<std::string> modeNames();

// By name, alias (any case, "-" and "_" do not matter) or number. Throws a UsageError that names
// the nearest.
const Mode& findMode(const std::string& nameOrNumber);

}  // namespace lumora::tool
