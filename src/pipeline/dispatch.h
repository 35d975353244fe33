// The dispatcher: hands a checked call to the filter of its mode.
#pragma once

#include "pipeline/call.h"
#include "platform/status.h"

namespace lumora {

// FilterProcessRGBA, FilterProcessNV21 and FilterProcessNV12 and their single-threaded twins in
// one: repeats the format's checks, then runs the mode's route. Every buffer is released on return.
Status dispatch(const Call& call);

}  // namespace lumora
