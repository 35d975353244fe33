// Down-sampling: a picture reduced to one of its levels.
#pragma once

#include "effects/pyramid/level_rows.h"
#include "platform/picture.h"
#include "platform/status.h"

namespace lumora {

// Reduces the picture to level `levels` (1 or more), whose size `out` has.
//
// The first level of an RGBA picture keeps every second pixel of every second row; an odd height's
// last row averages the last two rows. That of an NV picture averages the luma and takes the chroma
// as it is. Every further level averages.
//
// Returns kThreadFailed, logged, when a worker cannot be started; parts of out are then unwritten.
Status DownSample(const Picture& picture, int levels, const PlanarImage& out,
                  std::uint8_t* rowMemory, Threads threads);

}  // namespace lumora
