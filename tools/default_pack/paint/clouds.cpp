#include "default_pack/paint/canvas.h"
#include "default_pack/paint/painters.h"

namespace lumora::paint {
namespace {

constexpr std::uint32_t kSeed = 0x2000;
// Below 64 the strong curve of the look goes to black, above 192 highlights clip.
constexpr double kLow = 72;
constexpr double kHigh = 184;

// Fractal noise whose place is bent by fainter noise. More bending turns clouds into marble.
double cloudiness(double u, double v) {
  const double x = 1.25 * u + 10;
  const double y = 1.45 * v + 10;
  const double bendX = fractal(0.9 * x, 0.9 * y, 2, kSeed + 0x10) - 0.5;
  const double bendY = fractal(0.9 * x, 0.9 * y, 2, kSeed + 0x20) - 0.5;
  return fractal(x + 0.7 * bendX, y + 0.7 * bendY, 5, kSeed + 0x30);
}

}  // namespace

void paintClouds(std::uint8_t* dst) {
  paintField(dst, {kLow, kHigh, kSeed}, [](double u, double v) {
    const double f = cloudiness(u, v);
    const double edges = smootherStep((f - 0.28) / 0.46);
    const double haze = clamp((f - 0.2) / 0.6, 0, 1);
    return 90 + 84 * (0.65 * edges + 0.35 * haze);
  });
}

}  // namespace lumora::paint
