// The inner loops of the masks, for the level in use.
#pragma once

#include <cstdint>

#include "platform/vector_level.h"

namespace lumora {

// A stretch of a mask's row inside the circle's ring.
struct RingRun {
  std::uint8_t* out;
  int count;
  std::int32_t dx;           // of the first pixel; |dx| of every pixel is at most kMaxRingExtent
  std::int32_t dySquared;    // at most kMaxRingExtent squared
  std::int32_t outerRadius;  // at most kMaxRingExtent
  std::int32_t slope;        // 2048 x the mask's change from one whole pixel to the next
};
// Sums of two squares up to here are 32-bit integers.
inline constexpr std::int32_t kMaxRingExtent = 32767;

// A stretch of a band's ramp: pixel i of it gets base + (first + i) step, truncated, which lies in
// 0..255. first + count is a 32-bit integer.
struct RampRun {
  std::uint8_t* out;
  int count;
  std::int32_t first;
  float base;
  float step;
};

struct MaskKernels {
  // 255 - ((outerRadius - distance) slope >> 11), the distance being the single-precision square
  // root of dx squared + dySquared, truncated.
  void (*fillRing)(const RingRun& run);
  void (*fillRamp)(const RampRun& run);
};

LUMORA_PER_LEVEL(MaskKernels, kMask)

}  // namespace lumora
