#include "default_pack/paint/canvas.h"
#include "default_pack/paint/painters.h"

namespace lumora::paint {
namespace {

constexpr std::uint32_t kSeed = 0x3000;
constexpr int kChannels = 3;

// The leak's lights: how strong each is at a place of the frame, 0..1.
struct Lights {
  double veil;    // the broad fall from the edge
  double core;    // the hot spot
  double second;  // a smaller spot below it
  double rim;     // a faint answer in the opposite corner
};
constexpr double kColours[kChannels][4] = {
    {330, 420, 110, 52},  // red
    {44, 300, 36, 5},     // green
    {8, 84, 6, 30},       // blue
};
// No channel exceeds its shoulder; above half of it lights merge softly.
constexpr double kShoulder[kChannels] = {290, 250, 170};

// 1 in the middle of an ellipse, 0 at its rim and outside.
double spot(double x, double y, double centreX, double centreY, double radiusX, double radiusY) {
  const double dx = (x - centreX) / radiusX;
  const double dy = (y - centreY) / radiusY;
  return clamp(1 - (dx * dx + dy * dy), 0, 1);
}

double cube(double x) { return x * x * x; }

// x and y in 0..1, the leak comes from x = 0.
Lights lightsAt(double x, double y) {
  const double edge = 0.52 + 0.5 * (gradientNoise(2.1 * y + 0.4, 3.37, kSeed + 0x10) - 0.5) +
                      0.06 * (fractal(4 * y, 0.5, 3, kSeed + 0x20) - 0.5);
  const double veil = clamp(1 - x / edge, 0, 1);
  const double core = spot(x, y, -0.10, 0.36, 0.62, 0.60);
  return {veil * veil * (0.4 + 0.6 * veil), cube(core) * core * core,
          cube(spot(x, y, -0.05, 0.84, 0.34, 0.36)), cube(spot(x, y, 1.05, 0.92, 0.45, 0.5))};
}

// What is as good as no light becomes exactly none: the look's strong curve lifts low values, and
// would show them as a flat haze. Noise of up to half a level keeps slow ramps from showing bands.
std::uint8_t exposed(double light, int channel, std::int32_t x, std::int32_t y) {
  const double value = kShoulder[channel] * light / (light + kShoulder[channel]);
  if (value <= 0.02) return 0;
  const std::uint32_t seed = kSeed + 2 * static_cast<std::uint32_t>(channel);
  const double noise = 0.5 * (uniform(x, y, seed) + uniform(x, y, seed + 1) - 1.0);
  return static_cast<std::uint8_t>(std::floor(clamp(value + noise, 0, 255) + 0.5));
}

void paintTexel(std::int32_t x, std::int32_t y, std::uint8_t* texel) {
  const double fx = (x + 0.5) / kLeakSide;
  const double fy = (y + 0.5) / kLeakSide;
  const Lights lights = lightsAt(fx, fy);
  const double smoke = 0.86 + 0.28 * fractal(1.1 * fx, 2.6 * fy, 3, kSeed + 0x30);
  for (int c = 0; c < kChannels; ++c) {
    const double* colour = kColours[c];
    const double light = colour[0] * lights.veil + colour[1] * lights.core +
                         colour[2] * lights.second + colour[3] * lights.rim;
    texel[c] = exposed(light * smoke, c, x, y);
  }
}

}  // namespace

void paintLeak(std::uint8_t* dst, int direction) {
  constexpr std::int32_t kLast = kLeakSide - 1;
  for (std::int32_t y = 0; y < kLeakSide; ++y) {
    for (std::int32_t x = 0; x < kLeakSide; ++x, dst += kChannels) {
      switch (direction) {
        case 0: paintTexel(x, y, dst); break;
        case 1: paintTexel(y, kLast - x, dst); break;
        case 2: paintTexel(kLast - x, kLast - y, dst); break;
        default: paintTexel(kLast - y, x, dst); break;
      }
    }
  }
}

}  // namespace lumora::paint
