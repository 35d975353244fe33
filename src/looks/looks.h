// The looks, for the level in use: kMoran(), kRixi(), ...
#pragma once

#include "looks/look.h"
#include "platform/vector_level.h"

namespace lumora {

// LOOK(the mode, the constant that the look's file defines)
#define LUMORA_FOR_EACH_LOOK(LOOK)                                        \
  LOOK(LUMORA_MODE_MORAN, kMoran)                                         \
  LOOK(LUMORA_MODE_RIXI, kRixi)                                           \
  LOOK(LUMORA_MODE_FUGU, kFugu)                                           \
  LOOK(LUMORA_MODE_VALENCIA, kValencia)                                   \
  LOOK(LUMORA_MODE_LAODIANYING, kLaodianying)                             \
  LOOK(LUMORA_MODE_LIANGHONG, kLianghong)                                 \
  LOOK(LUMORA_MODE_YUNDUAN, kYunduan)                                     \
  LOOK(LUMORA_MODE_EARLYBIRD, kEarlybird)                                 \
  LOOK(LUMORA_MODE_NUANYANGYANG, kNuanyangyang)                           \
  LOOK(LUMORA_MODE_TIANMEIKEREN, kTianmeikeren)                           \
  LOOK(LUMORA_MODE_MEISHIMENGHUAN, kMeishimenghuan) /* its curve stage */ \
  LOOK(LUMORA_MODE_HEIBAI, kHeibai)                                       \
  LOOK(LUMORA_MODE_XPRO2, kXpro2)                                         \
  LOOK(LUMORA_MODE_HUDSON, kHudson)                                       \
  LOOK(LUMORA_MODE_MYFAIR, kMyfair)                                       \
  LOOK(LUMORA_MODE_LOFI, kLofi)

#define LUMORA_DECLARE_LOOK_(mode, look) LUMORA_PER_LEVEL(Look, look)
LUMORA_FOR_EACH_LOOK(LUMORA_DECLARE_LOOK_)

}  // namespace lumora
