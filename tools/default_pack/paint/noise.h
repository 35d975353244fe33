// Noise for drawn textures and scenes. Everything is integer hashing and + - * / sqrt on doubles,
// so that every compiler and processor draws the same bytes: no other function of the maths library
// may be used.
#pragma once

#include <cmath>
#include <cstdint>

namespace lumora::paint {

// A well-mixed number of a lattice point; every use has a seed of its own.
inline std::uint32_t hash(std::int32_t x, std::int32_t y, std::uint32_t seed) {
  std::uint32_t h = static_cast<std::uint32_t>(x) * 0x9E3779B1U;
  h ^= static_cast<std::uint32_t>(y) * 0x85EBCA77U + 0x165667B1U;
  h ^= seed * 0xC2B2AE3DU;
  h ^= h >> 15;
  h *= 0x2C1B3C6DU;
  h ^= h >> 12;
  h *= 0x297A2D39U;
  return h ^ (h >> 15);
}

// Uniform in [0, 1).
inline double uniform(std::int32_t x, std::int32_t y, std::uint32_t seed) {
  return hash(x, y, seed) * (1.0 / 4294967296.0);
}

inline double uniform(std::int32_t x, std::int32_t y, std::uint32_t seed, double low, double high) {
  return low + (high - low) * uniform(x, y, seed);
}

// Near normal: mean 0, deviation 1.
inline double normal(std::int32_t x, std::int32_t y, std::uint32_t seed) {
  double sum = 0;
  for (std::uint32_t k = 0; k < 6; ++k) sum += uniform(x, y, seed + k);
  return (sum - 3.0) * 1.4142135623730951;
}

inline double clamp(double x, double low, double high) {
  return x < low ? low : x > high ? high : x;
}

inline double lerp(double a, double b, double t) { return a + (b - a) * t; }

// Zero up to 0, one from 1 on; slope and curvature vanish at both ends.
inline double smootherStep(double x) {
  const double t = clamp(x, 0.0, 1.0);
  return t * t * t * (t * (t * 6.0 - 15.0) + 10.0);
}

// The slope of a random direction at a lattice point, times the way (dx, dy) from it. The sixteen
// directions are exact: sides of right-angled triangles.
inline double slope(std::int32_t ix, std::int32_t iy, std::uint32_t seed, double dx, double dy) {
  static constexpr double kDirections[16][2] = {
      {1, 0},       {0, 1},        {-1, 0},        {0, -1},      {0.8, 0.6},   {-0.6, 0.8},
      {-0.8, -0.6}, {0.6, -0.8},   {0.6, 0.8},     {-0.8, 0.6},  {-0.6, -0.8}, {0.8, -0.6},
      {0.96, 0.28}, {-0.28, 0.96}, {-0.96, -0.28}, {0.28, -0.96}};
  const double* direction = kDirections[hash(ix, iy, seed) >> 28];
  return direction[0] * dx + direction[1] * dy;
}

// Gradient noise about 0.5 with features one unit wide. (Value noise shows its lattice.) slopeAt is
// called like slope().
template <class SlopeAt>
double gradientNoiseOf(SlopeAt slopeAt, double x, double y, std::uint32_t seed) {
  const double fx = std::floor(x);
  const double fy = std::floor(y);
  const auto ix = static_cast<std::int32_t>(fx);
  const auto iy = static_cast<std::int32_t>(fy);
  const double dx = x - fx;
  const double dy = y - fy;
  const double tx = smootherStep(dx);
  const double ty = smootherStep(dy);
  const double top = lerp(slopeAt(ix, iy, seed, dx, dy), slopeAt(ix + 1, iy, seed, dx - 1, dy), tx);
  const double bottom = lerp(slopeAt(ix, iy + 1, seed, dx, dy - 1),
                             slopeAt(ix + 1, iy + 1, seed, dx - 1, dy - 1), tx);
  return 0.5 + 0.72 * lerp(top, bottom, ty);
}

inline double gradientNoise(double x, double y, std::uint32_t seed) {
  return gradientNoiseOf(slope, x, y, seed);
}

// Uniform lattice values, joined smoothly.
inline double valueNoise(double x, double y, std::uint32_t seed) {
  const double fx = std::floor(x);
  const double fy = std::floor(y);
  const auto ix = static_cast<std::int32_t>(fx);
  const auto iy = static_cast<std::int32_t>(fy);
  const double tx = smootherStep(x - fx);
  const double top = lerp(uniform(ix, iy, seed), uniform(ix + 1, iy, seed), tx);
  const double bottom = lerp(uniform(ix, iy + 1, seed), uniform(ix + 1, iy + 1, seed), tx);
  return lerp(top, bottom, smootherStep(y - fy));
}

// A sum of ever finer and fainter noises, about 0.5. Each octave is turned by the angle of a
// 3-4-5 triangle, which hides the lattice.
template <class Noise>
double octaves(Noise noise, double x, double y, int count, std::uint32_t seed) {
  double sum = 0;
  double weights = 0;
  double amplitude = 1;
  for (int k = 0; k < count; ++k) {
    amplitude *= 0.5;
    sum += amplitude * noise(x, y, seed + static_cast<std::uint32_t>(k));
    weights += amplitude;
    const double turnedX = 2.03 * (0.8 * x - 0.6 * y) + 17.7;
    y = 2.03 * (0.6 * x + 0.8 * y) + 5.3;
    x = turnedX;
  }
  return sum / weights;
}

inline double fractal(double x, double y, int count, std::uint32_t seed) {
  return octaves(gradientNoise, x, y, count, seed);
}

}  // namespace lumora::paint
