// Settings with which every look shows on any picture what it does.
#pragma once

#include "look_settings.h"
#include "lumora/filters.h"

namespace lumora::tool {

// `picture` is packed rgba. What is not chosen here suits every picture by default.
LookSettings exampleSettings(const Mode& mode, int strength, bool singleThread,
                             const FilterImage& picture);

}  // namespace lumora::tool
