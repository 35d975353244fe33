// How each mode runs: its route and its look or its messages, joined to the facts of the modes.
#pragma once

#include <cstdint>

#include "looks/look.h"
#include "modes/modes.h"
#include "pipeline/call.h"

namespace lumora {

// The routine that a failure is reported under.
struct RoutineNames {
  const char* onFour;
  const char* onFourNv;  // NV21 and NV12 share one
  const char* onCaller;
  const char* onCallerNv;
};

struct ModeRow;
using Route = Status (*)(const Call& call, const ModeRow& row);

struct ModeRow {
  Route route;
  const Look& (*look)();    // null for the effects
  const char* lookRoutine;  // of the looks: the format and the look's name are put behind it
  RoutineNames effect;      // of the effects
  const ModeFacts* facts;

  const TextureUse& texture() const { return facts->texture; }
};

// The row of a mode, null for a number that is none.
const ModeRow* findMode(std::uint32_t mode);

}  // namespace lumora
