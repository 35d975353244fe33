// Scratches along the film.
#pragma once

#include "default_pack/paint/canvas.h"

namespace lumora::paint {

struct ScratchKind {
  int count;
  double fromDepth;  // levels added; negative is dark
  double toDepth;
  double fromWidth;  // half-width in texels
  double toWidth;
  std::uint32_t seed;
};

// Adds one kind's scratches to row y of a large texture.
inline void addScratches(const ScratchKind& kind, std::int32_t y, double* row) {
  const double v = (y + 0.5) / kSide;
  for (int i = 0; i < kind.count; ++i) {
    const auto random = [&kind, i](int use, double low, double high) {
      return uniform(i, use, kind.seed, low, high);
    };
    const double depth = random(0, kind.fromDepth, kind.toDepth);
    const double width = random(1, kind.fromWidth, kind.toWidth);
    const double start = random(2, -0.2, 0.8);
    const double length = random(3, 0.25, 1.0);
    const double inside =
        smootherStep((v - start) / 0.08) * smootherStep((start + length - v) / 0.08);
    if (inside <= 0) continue;

    // It has a lane of its own, wanders slowly, trembles a little and bites unevenly.
    const double place = 37.0 * i + 3.5;
    const double centre = (i + random(4, 0.1, 0.9)) * kSide / kind.count +
                          14 * (gradientNoise(2.2 * v, place, kind.seed + 1) - 0.5) +
                          1.6 * (gradientNoise(30 * v, place, kind.seed + 2) - 0.5);
    const double bite =
        0.35 + 0.65 * smootherStep(4 * (gradientNoise(14 * v, place, kind.seed + 3) - 0.3));
    for (auto x = static_cast<std::int32_t>(centre - 4); x <= centre + 4; ++x) {
      if (x < 0 || x >= kSide) continue;
      const double d = x < centre ? centre - x : x - centre;
      row[x] += depth * inside * bite * clamp(1.6 * (1 - d / width), 0, 1);
    }
  }
}

}  // namespace lumora::paint
