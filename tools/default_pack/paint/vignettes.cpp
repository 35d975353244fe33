#include "default_pack/paint/canvas.h"
#include "default_pack/paint/falloff.h"
#include "default_pack/paint/painters.h"

namespace lumora::paint {
namespace {

struct Vignette {
  double centre;
  double corner;
  double curvature;
  Fall power;
  double box;
  double wobble;
  double mottle;  // unevenness, in levels
  Rounding rounding;
};

// EARLYBIRD scales its lift by the texture, full at 255.
constexpr Vignette kVignette = {252, 92, 1.1, Fall::kQuartic, 0.35, 0.05, 4, {88, 255, 0x1000}};
// XPRO2 darkens by about 0.35 of the texture; 0 leaves the picture alone.
constexpr Vignette kEdgeBurn = {0, 150, 0.8, Fall::kQuartic, 0.30, 0.04, 3, {0, 150, 0x1100}};
// HUDSON overlays the texture, twice at strengths above 16; 128 is neutral.
constexpr Vignette kLamp = {158, 60, 0.7, Fall::kQuadratic, 0.30, 0.05, 6, {56, 165, 0x1200}};
// MYFAIR is neutral at 95 and 96. Bytes above 144 would wrap around at strength 32, and below 32
// its strong curve gives black.
constexpr Vignette kDusk = {126, 42, 1.3, Fall::kQuartic, 0.45, 0.06, 5, {40, 136, 0x1300, 0.75}};
// LOFI is neutral at 124; its shadows fall first.
constexpr Vignette kFalloff = {134, 44, 0.9, Fall::kQuartic, 0.25, 0.04, 3, {40, 140, 0x1400, 1}};

void paint(const Vignette& look, std::uint8_t* dst) {
  paintField(dst, look.rounding, [&look](double u, double v) {
    const double d = distance(u, v, look.box, look.wobble, look.rounding.seed + 0x10);
    const double mottle = fractal(2.5 * u + 40, 2.5 * v + 40, 3, look.rounding.seed + 0x20) - 0.5;
    return look.centre + (look.corner - look.centre) * fall(d, look.curvature, look.power) +
           2 * look.mottle * mottle;
  });
}

}  // namespace

void paintVignette(std::uint8_t* dst) { paint(kVignette, dst); }
void paintEdgeBurn(std::uint8_t* dst) { paint(kEdgeBurn, dst); }
void paintLamp(std::uint8_t* dst) { paint(kLamp, dst); }
void paintDusk(std::uint8_t* dst) { paint(kDusk, dst); }
void paintFalloff(std::uint8_t* dst) { paint(kFalloff, dst); }

}  // namespace lumora::paint
