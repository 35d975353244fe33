// Focus effects: the picture is reduced, smoothed and grown back, and a mask says where the smooth
// version shows.
#pragma once

#include "platform/picture.h"
#include "platform/status.h"

namespace lumora {

// Sharp inside a circle. Level 0 leaves the picture alone; from 1 on it is blurred the more the
// higher the level and the larger the picture.
//
// Returns kBadArgument when the shorter side is 64 or less; kNoMemory, the picture untouched;
// kThreadFailed when a worker cannot be started.
Status FilterBlur(const Picture& picture, const BlurParam& circle, int level,
                  const FilterAllocator& allocator, Threads threads);

// Sharp inside a band; otherwise as FilterBlur. The core is 0..32.
Status FilterTiltshift(const Picture& picture, const TiltShiftParam& tilt, int level,
                       const FilterAllocator& allocator, Threads threads);

// Neither effect nor the glow takes pictures whose shorter side is not above this.
inline constexpr int kShortSideLimit = 64;

}  // namespace lumora
