// The texture looks, for the level in use: kEarlybird(), kHudson(), ...
#pragma once

#include "looks/look.h"
#include "platform/vector_level.h"

namespace lumora {

LUMORA_PER_LEVEL(Look, kLaodianying)
LUMORA_PER_LEVEL(Look, kLianghong)
LUMORA_PER_LEVEL(Look, kYunduan)
LUMORA_PER_LEVEL(Look, kEarlybird)
LUMORA_PER_LEVEL(Look, kXpro2)
LUMORA_PER_LEVEL(Look, kHudson)
LUMORA_PER_LEVEL(Look, kMyfair)
LUMORA_PER_LEVEL(Look, kLofi)

}  // namespace lumora
