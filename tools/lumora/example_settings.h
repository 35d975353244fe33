// Settings with which every look shows on any picture what it does.
#pragma once

#include <cstdint>
#include <vector>

#include "look_settings.h"
#include "words.h"

namespace lumora::tool {

// `rgba` is the picture, rows packed. What is not chosen here suits every picture by default.
LookSettings exampleSettings(const Mode& mode, int strength, bool singleThread,
                             const std::vector<std::uint8_t>& rgba, Size size);

}  // namespace lumora::tool
