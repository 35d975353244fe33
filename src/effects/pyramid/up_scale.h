// Up-scaling: a small image grown back through the levels and mixed into its picture.
#pragma once

#include "effects/masks/masks.h"
#include "effects/pyramid/level_rows.h"
#include "platform/picture.h"
#include "platform/status.h"

namespace lumora {

// How much of the grown image goes into the picture.
struct Mix {
  const MaskRows* mask;                // 255 takes the grown sample; or null and
  int weight;                          // 0..31 of 32, the same everywhere
  std::uint8_t* maskMemory = nullptr;  // with a mask, a row of it for each stripe
};

// Grows level `levels` to the picture's size and mixes it in. Between the levels a sample counts
// with weight 3/4 for the nearer new samples and 1/4 for the farther ones, in both directions.
//
// Returns kThreadFailed when a worker cannot be started; its rows of the picture are untouched.
Status ImUpScale(const PlanarImage& small, int levels, const Picture& picture, const Mix& mix,
                 std::uint8_t* rowMemory, Threads threads);

}  // namespace lumora
