// Hue, saturation and grey of single colours, with a division table's 13-bit fixed point: for the
// reference colour of colour fix and the pixels at the end of a row that do not fill eight.
#pragma once

#include <algorithm>
#include <cstdint>

namespace lumora {

struct Colour {
  int r;
  int g;
  int b;

  int highest() const { return std::max({r, g, b}); }
  int range() const { return highest() - std::min({r, g, b}); }
};

// 1 / d in 13-bit fixed point, 0 for 0.
constexpr int reciprocal13(int d) { return d == 0 ? 0 : 8192 / d; }

// A sixth of the circle of 255 per half sector; grey has hue 0.
inline int hueOf(const Colour& c) {
  const int d = c.range();
  if (d == 0) return 0;
  const int highest = c.highest();
  int base = 170, difference = c.r - c.g;
  if (c.r == highest) {
    base = c.g < c.b ? 255 : 0;
    difference = c.g - c.b;
  } else if (c.g == highest) {
    base = 85;
    difference = c.b - c.r;
  }
  // |difference| <= d, so the scaled one is -256..256 and a half sector at most 43. d / 2 rounds.
  const int scaled = (reciprocal13(d) * ((d >> 1) + 256 * difference)) >> 13;
  return std::clamp(base + ((scaled * 85 + 256) >> 9), 0, 255);
}

// 0..254: the product is at most 32 x 255 x 255 where it is largest.
inline int saturationOf(const Colour& c) {
  return ((reciprocal13(c.highest()) * c.range() * 255) >> 13) & 0xFF;
}

inline int roundedGreyOf(const Colour& c) { return (19 * c.r + 38 * c.g + 7 * c.b + 32) >> 6; }

}  // namespace lumora
