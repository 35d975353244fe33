// From drawn values to bytes.
#pragma once

#include <cstdint>

#include "default_pack/paint/noise.h"

namespace lumora::paint {

// Sides of the pack's large textures.
inline constexpr std::int32_t kSide = 1024;
inline constexpr std::int32_t kLeakSide = 512;

// The middle of a texel, in -1..1 from edge to edge.
inline double centred(std::int32_t index, std::int32_t count) {
  return (2.0 * index + 1.0) / count - 1.0;
}

// Rounds with noise of up to half a level, so that slow ramps show no bands, not even after their
// contrast was raised. low..high: the bytes the look can bear.
inline std::uint8_t dithered(double value, std::int32_t x, std::int32_t y, std::uint32_t seed,
                             double low, double high) {
  const double noise = 0.5 * (uniform(x, y, seed) + uniform(x, y, seed + 1) - 1.0);
  return static_cast<std::uint8_t>(std::floor(clamp(value + noise, low, high) + 0.5));
}

// Fills a large grey texture row by row. drawRow(y, row) writes the row's kSide values.
template <class DrawRow>
void paintRows(std::uint8_t* dst, std::uint32_t seed, double low, double high, DrawRow drawRow) {
  double row[kSide];
  for (std::int32_t y = 0; y < kSide; ++y) {
    drawRow(y, row);
    for (std::int32_t x = 0; x < kSide; ++x) *dst++ = dithered(row[x], x, y, seed, low, high);
  }
}

// Fills a large grey texture with value(u, v), u and v in -1..1.
template <class Value>
void paintField(std::uint8_t* dst, std::uint32_t seed, double low, double high, Value value) {
  paintRows(dst, seed, low, high, [&value](std::int32_t y, double* row) {
    const double v = centred(y, kSide);
    for (std::int32_t x = 0; x < kSide; ++x) row[x] = value(centred(x, kSide), v);
  });
}

}  // namespace lumora::paint
