#include "effects/glow.h"

#include <algorithm>
#include <bit>

#include "effects/focus.h"
#include "effects/pyramid/down_sample.h"
#include "effects/pyramid/pyramid_memory.h"
#include "effects/pyramid/up_scale.h"
#include "effects/smoothing/binomial_blur.h"
#include "looks/looks.h"

namespace lumora {
namespace {

// A failed reduction leaves parts of the small image unwritten, so it is not blended. The failures
// are logged below and are not the look's.
void blendGlow(const Picture& picture, std::uint8_t* scratch, int levels, int weight,
               Threads threads) {
  const PyramidMemory memory(picture, levels, scratch);
  if (DownSample(picture, levels, memory.reduced, memory.rows, threads) != Status::kOk) return;
  Blur3x3Planes(memory.reduced, memory.smoothed);
  static_cast<void>(
      ImUpScale(memory.smoothed, levels, picture, {nullptr, weight}, memory.rows, threads));
}

}  // namespace

// The whole part of log2(x), found as ln(x) times 1 / ln(2) in double precision. Of all x up to 625
// that product falls short of a whole number for these three.
int glowLevels(int shortSide) {
  const unsigned x = static_cast<unsigned>(shortSide) >> 5;
  const bool fallsShort = x == 8 || x == 64 || x == 128;
  return std::bit_width(x) - 1 - fallsShort;
}

Status FilterMeishimenghuan(const Picture& picture, std::uint8_t* scratch,
                            const std::uint8_t* block, int ratio, Threads threads) {
  const int shortSide = std::min(picture.widthPixels, picture.heightRows);
  if (shortSide <= kShortSideLimit) return Status::kBadArgument;
  blendGlow(picture, scratch, glowLevels(shortSide), GlowWeight(ratio), threads);
  return runLook(kMeishimenghuan(), picture, {{}, block, ratio}, threads);
}

}  // namespace lumora
