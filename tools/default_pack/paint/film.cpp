#include "default_pack/paint/canvas.h"
#include "default_pack/paint/falloff.h"
#include "default_pack/paint/painters.h"
#include "default_pack/paint/scratches.h"

namespace lumora::paint {
namespace {

constexpr std::uint32_t kShadeSeed = 0x4000;
constexpr std::uint32_t kGrainSeed = 0x5000;
constexpr std::uint32_t kBlotchSeed = 0x6000;
constexpr std::uint32_t kSpeckSeed = 0x6100;

constexpr ScratchKind kDarkScratches = {16, -60, -18, 0.7, 2.6, kShadeSeed + 0x50};
constexpr ScratchKind kLightScratches = {7, 8, 15, 0.7, 2.6, kShadeSeed + 0x60};
constexpr ScratchKind kGrainScratches = {9, 25, 80, 0.7, 1.7, kGrainSeed + 0x50};

// The print darkens towards its corners and is worn unevenly, with faint streaks along the way the
// film runs (streaks across it look like bad video).
double print(double u, double v) {
  const double d = distance(u, v, 0.5, 0.10, kShadeSeed + 0x10);
  return 252 - 67 * fall(d, 1.2, Fall::kQuartic) +
         18 * (fractal(2.2 * u, 2.2 * v, 4, kShadeSeed + 0x20) - 0.5) +
         7 * (fractal(70 * u, 0.8 * v, 2, kShadeSeed + 0x30) - 0.5);
}

// Frames are wider than high, by 4 : 3 to 3 : 2. Grain and dust are that much higher than wide in
// the texture, so that they come out round.
constexpr double kStretch = 1.41;

// Normal noise with a little of its neighbours: grains 1.1 texels wide and 1.6 high. Any finer
// and they would be single texels, which wide pictures show as oblong blocks. The deviation is 1.
double fineGrain(std::int32_t x, std::int32_t y) {
  static constexpr double kAcross[3] = {0.06, 1, 0.06};
  static constexpr double kAlong[3] = {0.20, 1, 0.20};
  double sum = 0;
  for (int dy = 0; dy < 3; ++dy) {
    for (int dx = 0; dx < 3; ++dx) {
      sum += kAlong[dy] * kAcross[dx] * normal(x + dx, y + dy, kGrainSeed + 0x10);
    }
  }
  return sum / 1.043;
}

// Three levels of the texture are one of the picture. In whole steps of them it packs better.
constexpr double kGrainStep = 3;

double grain(std::int32_t x, std::int32_t y) {
  const double clumps =
      octaves(valueNoise, x / 2.6, y / (2.6 * kStretch), 2, kGrainSeed + 0x20) - 0.5;
  const double unevenness =
      fractal(2 * centred(x, kSide), 2 * centred(y, kSide), 3, kGrainSeed + 0x30) - 0.5;
  const double value = 53 + 15.5 * (0.93 * fineGrain(x, y) + 0.36 * 5.2 * clumps) + 12 * unevenness;
  return kGrainStep * std::floor(value / kGrainStep + 0.5);
}

// Dust: small discs, most of them light.
constexpr int kDustCount = 260;

void addDust(std::int32_t y, double* row) {
  constexpr std::uint32_t kSeed = kGrainSeed + 0x70;
  for (int i = 0; i < kDustCount; ++i) {
    const double dy = (y - uniform(i, 1, kSeed, 0, kSide)) / kStretch;
    const double radius = uniform(i, 2, kSeed, 0.8, 2.7);
    if (dy < -radius || dy > radius) continue;
    const double centre = uniform(i, 3, kSeed, 4, kSide - 5);
    const double depth = i % 3 == 0 ? -30 : 55;
    for (auto x = static_cast<std::int32_t>(centre) - 3; x <= centre + 3; ++x) {
      const double dx = x - centre;
      const double d = std::sqrt(dx * dx + dy * dy);
      row[x] += depth * clamp(1.6 * (1 - d / radius), 0, 1);
    }
  }
}

struct Point {
  double x;
  double y;
};

double distanceToLine(Point p, Point a, Point b) {
  const double dx = b.x - a.x;
  const double dy = b.y - a.y;
  const double t = clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / (dx * dx + dy * dy), 0, 1);
  const double ex = p.x - (a.x + t * dx);
  const double ey = p.y - (a.y + t * dy);
  return std::sqrt(ex * ex + ey * ey);
}

// 1 in the middle of an ellipse, 0 at its rim, below 0 outside.
double ellipse(Point p, Point centre, double radiusX, double radiusY) {
  const double dx = (p.x - centre.x) / radiusX;
  const double dy = (p.y - centre.y) / radiusY;
  return 1 - std::sqrt(dx * dx + dy * dy);
}

// A hair with a knot: 1 in its middle, 0 at its rim, below 0 outside.
double hair(Point p) {
  static constexpr Point kLine[] = {{5, 19},    {10, 12.5}, {17, 9}, {25, 9.5},
                                    {32, 13.5}, {37, 18},   {43, 21}};
  constexpr int kPieces = static_cast<int>(sizeof kLine / sizeof kLine[0]) - 1;
  double best = ellipse(p, {24, 10.5}, 3, 2);
  for (int i = 0; i < kPieces; ++i) {
    const double halfWidth = uniform(i, 0, kBlotchSeed, 1.35, 1.85);
    const double profile = 1 - distanceToLine(p, kLine[i], kLine[i + 1]) / halfWidth;
    if (profile > best) best = profile;
  }
  return best;
}

}  // namespace

void paintShade(std::uint8_t* dst) {
  paintRows(dst, {90, 255, kShadeSeed}, [](std::int32_t y, double* row) {
    for (std::int32_t x = 0; x < kSide; ++x) row[x] = print(centred(x, kSide), centred(y, kSide));
    addScratches(kDarkScratches, y, row);
    addScratches(kLightScratches, y, row);
  });
}

void paintGrain(std::uint8_t* dst) {
  paintRows(dst, {4, 170, kGrainSeed}, [](std::int32_t y, double* row) {
    for (std::int32_t x = 0; x < kSide; ++x) row[x] = grain(x, y);
    addScratches(kGrainScratches, y, row);
    addDust(y, row);
  });
}

// Values above 79 mark the picture. The rest stays far below: it must not mark at any size.
void paintBlotch(std::uint8_t* dst) {
  for (std::int32_t y = 0; y < 27; ++y) {
    for (std::int32_t x = 0; x < 48; ++x) {
      const double profile = hair({static_cast<double>(x), static_cast<double>(y)});
      const double noise = 20 * uniform(x, y, kBlotchSeed + 1);
      const double halo = 20 * clamp(1 + profile, 0, 1);
      const double value = profile > 0 ? 86 + 104 * profile + noise : halo + noise;
      *dst++ = static_cast<std::uint8_t>(value);
    }
  }
}

void paintSpeck(std::uint8_t* dst) {
  for (std::int32_t y = 0; y < 12; ++y) {
    for (std::int32_t x = 0; x < 17; ++x) {
      const Point p = {static_cast<double>(x), static_cast<double>(y)};
      const bool mark = ellipse(p, {6.2, 5}, 2.5, 2.5) > 0 || ellipse(p, {12, 8.5}, 1.6, 1.1) > 0;
      *dst++ = static_cast<std::uint8_t>(mark ? 220 : 24 * uniform(x, y, kSpeckSeed));
    }
  }
}

}  // namespace lumora::paint
