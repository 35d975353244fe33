// The colour looks, for the level in use: kHeibai(), kMoran(), ...
#pragma once

#include "looks/look.h"
#include "platform/vector_level.h"

namespace lumora {

LUMORA_PER_LEVEL(Look, kMoran)
LUMORA_PER_LEVEL(Look, kRixi)
LUMORA_PER_LEVEL(Look, kFugu)
LUMORA_PER_LEVEL(Look, kValencia)
LUMORA_PER_LEVEL(Look, kNuanyangyang)
LUMORA_PER_LEVEL(Look, kTianmeikeren)
LUMORA_PER_LEVEL(Look, kHeibai)
LUMORA_PER_LEVEL(Look, kMeishimenghuan)  // its curve stage

}  // namespace lumora
