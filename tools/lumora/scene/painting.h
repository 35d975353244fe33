// Colour, edges and noise for drawn scenes: integer hashing and + - * / and square roots of doubles
// only, so that every processor computes the same.
#pragma once

#include <cmath>
#include <cstdint>

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

inline std::uint32_t hash(std::int32_t x, std::int32_t y, std::uint32_t seed) {
  std::uint32_t h = static_cast<std::uint32_t>(x) * 0x9E3779B1u;
  h ^= static_cast<std::uint32_t>(y) * 0x85EBCA77u + 0x165667B1u;
  h ^= seed * 0xC2B2AE3Du;
  h ^= h >> 15;
  h *= 0x2C1B3C6Du;
  h ^= h >> 12;
  h *= 0x297A2D39u;
  return h ^ (h >> 15);
}

// 0..1
inline double random01(std::int32_t x, std::int32_t y, std::uint32_t seed) {
  return hash(x, y, seed) / 4294967296.0;
}

inline std::int32_t floorOf(double v) {
  const auto whole = static_cast<std::int32_t>(v);
  return whole - (v < whole);
}

// Gradient noise around 0.5, nearly always within 0..1.
inline double noise(double x, double y, std::uint32_t seed) {
  const std::int32_t x0 = floorOf(x);
  const std::int32_t y0 = floorOf(y);
  const double fx = x - x0;
  const double fy = y - y0;
  const auto slope = [&](std::int32_t cx, std::int32_t cy) {
    // Unit vectors with rational coordinates, in all four quadrants and both orders.
    static constexpr double kDirections[4][2] = {{1, 0}, {0.8, 0.6}, {0.6, 0.8}, {0.96, 0.28}};
    const std::uint32_t h = hash(cx, cy, seed);
    const double* d = kDirections[h & 3];
    const double gx = h & 4 ? d[0] : -d[0];
    const double gy = h & 8 ? d[1] : -d[1];
    return gx * (x - cx) + gy * (y - cy);
  };
  const auto fade = [](double t) { return t * t * t * (t * (t * 6 - 15) + 10); };
  const double wx = fade(fx);
  const double top = slope(x0, y0) * (1 - wx) + slope(x0 + 1, y0) * wx;
  const double bottom = slope(x0, y0 + 1) * (1 - wx) + slope(x0 + 1, y0 + 1) * wx;
  return 0.5 + 0.72 * (top + (bottom - top) * fade(fy));
}

// Octaves of noise; each turns by a 3-4-5 triangle's angle so that no lattice shows.
inline double cloudNoise(double x, double y, int octaves, std::uint32_t seed) {
  double sum = 0;
  double weight = 0.5;
  double weights = 0;
  for (int i = 0; i < octaves; ++i) {
    sum += weight * noise(x, y, seed);
    weights += weight;
    weight *= 0.5;
    const double turned = 2.03 * (0.8 * x - 0.6 * y) + 17.7;
    y = 2.03 * (0.6 * x + 0.8 * y) + 5.3;
    x = turned;
  }
  return sum / weights;
}

}  // namespace lumora::tool
