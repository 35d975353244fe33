// The shape of light that falls off towards the corners.
#pragma once

#include "default_pack/paint/noise.h"

namespace lumora::paint {

// The way from the middle: 0 there, about 1 in the corners. box turns the circle towards a rounded
// square, wobble bends it a little.
inline double distance(double u, double v, double box, double wobble, std::uint32_t seed) {
  const double u2 = u * u;
  const double v2 = v * v;
  const double round = std::sqrt((u2 + v2) / 2);
  const double square = std::sqrt(std::sqrt((u2 * u2 + v2 * v2) / 2));
  const double bend = wobble * (fractal(2 * u + 9, 2 * v + 9, 3, seed) - 0.5);
  const double d = round + (square - round) * box + bend;
  return d > 0 ? d : 0;
}

// 0 in the middle, 1 at distance 1. Like a lens it has no flat middle with an edge, as a spotlight
// has. A larger curvature moves the fall towards the middle; quartic falls later than quadratic.
enum class Fall { kQuadratic, kQuartic };
inline double fall(double d, double curvature, Fall power) {
  const double d2 = d * d;
  const double e = power == Fall::kQuadratic ? d2 : d2 * d2;
  const double w = 1 / (1 + curvature * e);
  const double end = 1 / (1 + curvature);
  return (1 - w * w) / (1 - end * end);
}

}  // namespace lumora::paint
