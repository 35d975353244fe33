#include "scene/backdrop.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace lumora::tool {
namespace {

Rgb sky(double x, double y) {
  const double height = clamp01(1 - y / kShore);
  Rgb colour = mix({0.93, 0.86, 0.76}, {0.52, 0.72, 0.90}, ramp(0.0, 0.45, height));
  colour = mix(colour, {0.20, 0.43, 0.74}, ramp(0.35, 1.1, height));

  const double sun = distance(x - kSunX, y - kSunY);
  const double glow = 1 / (1 + sun * sun / 26000);
  colour = mix(colour, {1.0, 0.93, 0.76}, 0.85 * glow);

  // A flat layer of cloud seen from below: it gets finer towards the horizon.
  const double depth = 60000 / (kShore + 90 - y);
  const double cx = (x - 700) * depth / 30000;
  const double cy = depth / 22;
  const double puff = cloudNoise(cx + 3.1, cy, 6, 11);
  const double cover = ramp(0.47, 0.70, puff) * ramp(640, 420, y);
  const double lit = cloudNoise(cx + 3.1 - 0.10, cy - 0.16, 4, 11);
  const Rgb cloud =
      mix({0.70, 0.72, 0.79}, {1.0, 0.98, 0.94}, ramp(-0.06, 0.08, puff - lit + 0.03));
  colour = mix(colour, mix(cloud, {1.0, 0.95, 0.84}, 0.7 * glow), 0.92 * cover);

  lay(colour, {1.0, 0.99, 0.93}, sun - 27, 9);
  return colour;
}

// One range of mountains or hills: a ridge line, a colour in light and shade, a share of haze.
struct Range {
  double base;
  double height;
  double scale;
  std::uint32_t seed;
  Rgb lit;
  Rgb shade;
  double haze;
  double snowLine;  // units above the base; 0 for none
};

constexpr std::array kRanges = {
    Range{590, 330, 0.0026, 21, {0.62, 0.63, 0.69}, {0.34, 0.40, 0.54}, 0.42, 118},
    Range{612, 180, 0.0041, 22, {0.44, 0.52, 0.50}, {0.24, 0.33, 0.40}, 0.34, 0},
    Range{640, 150, 0.0052, 23, {0.36, 0.50, 0.28}, {0.16, 0.29, 0.24}, 0.17, 0},
    Range{652, 72, 0.0085, 24, {0.38, 0.54, 0.22}, {0.14, 0.29, 0.15}, 0.05, 0},
};

double ridge(const Range& range, double x) {
  return range.base -
         range.height * (cloudNoise(x * range.scale, range.seed, 6, range.seed) - 0.18);
}

void layRange(Rgb& colour, const Range& range, double x, double y) {
  const double top = ridge(range, x);
  if (y < top - 2) return;
  // The sun stands on the left, so slopes that rise to the right are lit.
  const double flank = x + 0.75 * (y - top);
  const double slope = (ridge(range, flank - 14) - ridge(range, flank)) * 0.030;
  const double rough =
      cloudNoise((x - 0.5 * y) * range.scale * 6, y * range.scale * 9, 5, range.seed + 40);
  double light = clamp01(0.46 + 0.9 * slope + 1.5 * (rough - 0.5));
  Rgb rock = mix(range.shade, range.lit, light);
  if (range.snowLine > 0) {
    const double above = range.base - y - 90 * (rough - 0.5);
    const double snow = ramp(range.snowLine - 14, range.snowLine + 22, above);
    rock = mix(rock, mix({0.62, 0.68, 0.80}, {0.98, 0.97, 0.95}, light), snow);
  }
  const Rgb air{0.80, 0.84, 0.87};
  lay(colour, mix(rock, air, range.haze + 0.25 * range.haze * ramp(top, range.base, y)), top - y);
}

// The boat houses: a row of paints and skin tones.
constexpr std::array kPaints = {
    Rgb{0.75, 0.20, 0.17}, Rgb{0.96, 0.80, 0.69}, Rgb{0.16, 0.38, 0.66}, Rgb{0.93, 0.73, 0.17},
    Rgb{0.80, 0.58, 0.45}, Rgb{0.25, 0.55, 0.32}, Rgb{0.90, 0.90, 0.88}, Rgb{0.48, 0.32, 0.24},
    Rgb{0.87, 0.47, 0.20}, Rgb{0.42, 0.28, 0.52},
};

void layHouses(Rgb& colour, double x, double y) {
  constexpr double kFirst = 842;
  constexpr double kPitch = 66;
  const double place = (x - kFirst) / kPitch;
  const auto index = floorOf(place);
  if (index < 0 || index >= static_cast<int>(kPaints.size()) || y < 540 || y > kShore + 4) return;
  const double dx = (place - index - 0.5) * kPitch;
  const double eaves = 596 - 10 * paint::uniform(index, 0, 31);
  const double half = 27;
  const Rgb paint = kPaints[static_cast<std::size_t>(index)];

  const double plank = floorOf(dx / 4.5) % 2 == 0 ? 0.97 : 1.03;
  const double gable = eaves - 34 + std::abs(dx) * 34 / half;
  const double wall = std::max({std::abs(dx) - half, gable - y, y - kShore - 2});
  lay(colour, paint * (plank * (1.02 - 0.10 * dx / half)), wall);
  // Roof, door, window.
  const double roof = std::max(std::abs(y - gable + 2) - 3.5, std::abs(dx) - half - 4);
  lay(colour, {0.36, 0.33, 0.33}, roof);
  lay(colour, paint * 0.45, std::max({std::abs(dx) - 9, eaves + 12 - y, y - kShore}));
  lay(colour, {0.95, 0.93, 0.88}, std::max(std::abs(dx) - 7, std::abs(y - eaves + 8) - 6));
  lay(colour, {0.30, 0.38, 0.46}, std::max(std::abs(dx) - 5, std::abs(y - eaves + 8) - 4));
}

struct Balloon {
  double x, y, radius;
  std::array<Rgb, 4> stripes;
};

constexpr std::array kBalloons = {
    Balloon{1165,
            205,
            104,
            {{{0.83, 0.16, 0.14}, {0.98, 0.93, 0.84}, {0.95, 0.66, 0.13}, {0.98, 0.93, 0.84}}}},
    Balloon{742,
            330,
            34,
            {{{0.15, 0.36, 0.70}, {0.55, 0.80, 0.86}, {0.15, 0.36, 0.70}, {0.95, 0.93, 0.90}}}},
};

void layBalloon(Rgb& colour, const Balloon& balloon, double x, double y) {
  const double dx = (x - balloon.x) / balloon.radius;
  const double dy = (y - balloon.y) / balloon.radius;
  if (std::abs(dx) > 1.1 || dy < -1.1 || dy > 2.2) return;
  const double unit = balloon.radius;

  for (const double side : {-1.0, 1.0}) {
    const double rope = dx - side * (0.19 - 0.05 * (dy - 1.25) / 0.4);
    lay(colour, {0.30, 0.26, 0.22},
        std::max({std::abs(rope) - 0.008, 1.15 - dy, dy - 1.62}) * unit);
  }
  const double basket = std::max(std::abs(dx) - 0.17, std::abs(dy - 1.72) - 0.12);
  lay(colour, mix({0.55, 0.36, 0.18}, {0.35, 0.21, 0.10}, clamp01(0.5 + 3 * dx)), basket * unit);

  // Round above, drawn together towards the mouth below.
  const double width =
      dy < 0.15 ? std::sqrt(std::max(0.0, 1 - dy * dy)) : 0.989 - 0.40 * (dy - 0.15) * (dy + 0.62);
  const double edge = std::max(std::abs(dx) - width, dy - 1.25);
  if (edge * unit > 1) return;
  // Gores: equal angles around the axis.
  const double across = std::min(1.0, std::max(-1.0, dx / std::max(width, 0.01)));
  const double angle = across * (1 + 0.28 * across * across) / 1.28;
  const auto gore = static_cast<std::size_t>(floorOf((angle + 1) * 6));
  const double light = 0.80 - 0.34 * dx - 0.20 * dy - 0.22 * across * across;
  lay(colour, balloon.stripes[gore % 4] * clamp01(0.45 + 0.75 * light), edge * unit);
}

}  // namespace

Rgb landscape(double x, double y) {
  Rgb colour = sky(x, y);
  for (const Balloon& balloon : kBalloons) layBalloon(colour, balloon, x, y);
  for (const Range& range : kRanges) layRange(colour, range, x, y);
  layHouses(colour, x, y);
  return colour;
}

}  // namespace lumora::tool
