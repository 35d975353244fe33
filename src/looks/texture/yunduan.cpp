// YUNDUAN: clouds: the texture by soft light, then a brightening curve per channel.
#include "looks/texture/texture_step.h"

namespace lumora::HWY_NAMESPACE {
namespace {

// R, G, B: plain, then strong
constexpr BuiltInCurves kCurves{
    3,
    {
        {{23, 36, 51, 67, 84, 104, 124, 139, 152, 164, 175, 185, 192, 198, 205, 218, 255}},
        {{22, 31, 42, 54, 68, 85, 103, 120, 137, 153, 168, 181, 190, 198, 208, 225, 255}},
        {{32, 41, 50, 61, 72, 84, 98, 111, 124, 138, 152, 167, 178, 185, 195, 210, 255}},
    },
    {
        {{52, 76, 99, 120, 139, 155, 169, 178, 188, 194, 199, 203, 206, 209, 213, 231, 254}},
        {{27, 32, 39, 48, 59, 72, 86, 106, 124, 149, 172, 186, 199, 208, 217, 236, 254}},
        {{10, 13, 16, 20, 24, 30, 36, 46, 57, 72, 88, 109, 131, 155, 180, 216, 254}},
    }};

constexpr Knots kStrongTexture{
    {0, 0, 0, 16, 38, 61, 83, 106, 128, 150, 173, 195, 218, 240, 255, 255, 255}};

// c m / 256 rounded, with m = (max(0, 256 t - t c + 128 c - 16384) + 32) >> 6; the texture is
// neutral at 128. The sum is (t - 128)(256 - c) + 16384, so m is 256 plus the rounding shift of
// (t - 128)(256 - c) by 6, here with factors of 8 and 64, and the result is c plus the rounding
// shift of their product by 8, here with 1 and 128. That lies within -128..127: it is added as a
// signed byte, to c - 128 so that the sum is clamped at both ends. A negative m comes out as 0 too.
HWY_INLINE V8 SoftLightTexture(V8 c, const EvenOdd& texture8) {
  const EvenOdd c64 = weightedHalves<64>(c);
  const VI16 room64 = hn::Set(di16, 256 * 64);
  const EvenOdd lift =
      mulFixedPoint15(texture8, {hn::Sub(room64, c64.even), hn::Sub(room64, c64.odd)});
  const EvenOdd added = mulFixedPoint15(lift, add(c64, c64));
  const V8 sign = hn::Set(d8, 128);
  const auto sum =
      hn::SaturatedAdd(hn::BitCast(di8, hn::Xor(c, sign)), hn::BitCast(di8, joinLowBytes(added)));
  return hn::Xor(hn::BitCast(d8, sum), sign);
}

template <bool kStrong>
struct YunduanStep : TextureStep {
  RgbCurves curves;
  Curve texture;

  explicit YunduanStep(const LookJob& job)
      : curves(rampedCurves(job, kCurves)), texture(textureCurve(job, kStrongTexture)) {}

  HWY_INLINE Rgb softLit(const Pixels<Texture>& p) const {
    const EvenOdd t8 = weightedHalves<8>(kStrong ? CurveLookup(texture, p.texels) : p.texels);
    const VI16 neutral8 = hn::Set(di16, 128 * 8);
    const EvenOdd texture8{hn::Sub(t8.even, neutral8), hn::Sub(t8.odd, neutral8)};
    return {SoftLightTexture(p.colour.r, texture8), SoftLightTexture(p.colour.g, texture8),
            SoftLightTexture(p.colour.b, texture8)};
  }
  HWY_INLINE Rgb graded(const Rgb& c) const { return CurveLookup(curves, c); }
  using Stages = StageList<&YunduanStep::softLit, &YunduanStep::graded>;
};

}  // namespace

const Look kYunduan = makeTwoStrengthLook<YunduanStep>(&kCurves);

}  // namespace lumora::HWY_NAMESPACE
