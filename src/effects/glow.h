// MEISHIMENGHUAN: a glow, then curves.
#pragma once

#include "lumora/filters.h"
#include "platform/picture.h"
#include "platform/status.h"

namespace lumora {

// The glow's weight of 32 at a strength of 8..32.
constexpr int GlowWeight(int ratio) {
  return ratio <= LUMORA_FULL_STRENGTH ? (19 * ratio) >> 4 : (7 * ratio + 192) >> 4;
}

// How often the glow halves a picture with this shorter side.
int glowLevels(int shortSide);

// Blends a strongly reduced and blurred copy into the picture, then runs the curve stage with the
// tuning block (or null) and returns its status. scratch holds three bytes a pixel.
//
// Returns kBadArgument, the picture untouched, when the shorter side is 64 or less; kThreadFailed
// when a worker of the curve stage cannot be started. Without the workers of the reduction there is
// no glow; without those of the blend their stripes have none.
Status FilterMeishimenghuan(const Picture& picture, std::uint8_t* scratch,
                            const std::uint8_t* block, int ratio, Threads threads);

}  // namespace lumora
