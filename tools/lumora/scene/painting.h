// Colour, edges and noise for drawn scenes: integer hashing and + - * / and square roots of doubles
// only, so that every processor computes the same.
#pragma once

#include <cmath>
#include <cstdint>

#include "default_pack/paint/noise.h"

namespace lumora::tool {

struct Rgb {
  double r = 0, g = 0, b = 0;  // 0..1
};

inline Rgb operator*(Rgb c, double k) { return {c.r * k, c.g * k, c.b * k}; }
inline Rgb operator+(Rgb a, Rgb b) { return {a.r + b.r, a.g + b.g, a.b + b.b}; }
inline Rgb mix(Rgb a, Rgb b, double share) { return a * (1 - share) + b * share; }

inline double clamp01(double v) { return v < 0 ? 0 : v > 1 ? 1 : v; }
// 0 below `low`, 1 above `high`, a smooth step between.
inline double ramp(double low, double high, double v) {
  const double t = clamp01((v - low) / (high - low));
  return t * t * (3 - 2 * t);
}

inline double distance(double dx, double dy) { return std::sqrt(dx * dx + dy * dy); }

// Distance to the edge of a line with round ends.
inline double limb(double x, double y, double x1, double y1, double x2, double y2, double radius) {
  const double dx = x2 - x1;
  const double dy = y2 - y1;
  const double along = clamp01(((x - x1) * dx + (y - y1) * dy) / (dx * dx + dy * dy));
  return distance(x - x1 - along * dx, y - y1 - along * dy) - radius;
}

// Lays a colour over another where the signed distance to its edge, in units, is negative.
inline void lay(Rgb& under, Rgb colour, double edge, double softness = 1.2) {
  const double cover = clamp01(0.5 - edge / softness);
  if (cover > 0) under = mix(under, colour, cover);
}

using paint::hash;

inline std::int32_t floorOf(double v) { return static_cast<std::int32_t>(std::floor(v)); }

// Unit vectors with rational coordinates, in all four quadrants and both orders.
inline double slopeAt(std::int32_t x, std::int32_t y, std::uint32_t seed, double dx, double dy) {
  static constexpr double kDirections[4][2] = {{1, 0}, {0.8, 0.6}, {0.6, 0.8}, {0.96, 0.28}};
  const std::uint32_t h = hash(x, y, seed);
  const double* d = kDirections[h & 3];
  return (h & 4 ? d[0] : -d[0]) * dx + (h & 8 ? d[1] : -d[1]) * dy;
}

// Gradient noise around 0.5, nearly always within 0..1.
inline double noise(double x, double y, std::uint32_t seed) {
  return paint::gradientNoiseOf(slopeAt, x, y, seed);
}

inline double cloudNoise(double x, double y, int octaves, std::uint32_t seed) {
  const auto sameInEveryOctave = [seed](double nx, double ny, std::uint32_t) {
    return noise(nx, ny, seed);
  };
  return paint::octaves(sameInEveryOctave, x, y, octaves, seed);
}

}  // namespace lumora::tool
