// XPRO2: cross-processed film: the texture darkens, then a steep curve per channel, read with four
// times the usual precision.
#include "looks/texture/texture_step.h"

namespace lumora::HWY_NAMESPACE {
namespace {

// R, G, B: plain, then strong
constexpr BuiltInCurves kCurves{
    3,
    {
        {{0, 7, 17, 30, 48, 66, 86, 109, 131, 153, 173, 194, 211, 226, 238, 249, 255}},
        {{0, 7, 17, 30, 48, 66, 86, 109, 131, 152, 172, 193, 210, 225, 238, 248, 255}},
        {{30, 42, 54, 66, 79, 91, 103, 116, 129, 142, 154, 167, 179, 192, 204, 217, 229}},
    },
    {
        {{0, 5, 11, 20, 36, 58, 81, 107, 135, 164, 190, 213, 228, 239, 248, 252, 255}},
        {{0, 3, 8, 16, 30, 50, 74, 105, 135, 162, 188, 211, 227, 239, 247, 252, 255}},
        {{53, 62, 71, 81, 90, 99, 109, 119, 130, 140, 150, 160, 169, 179, 189, 199, 208}},
    }};

constexpr Knots kStrongTexture{
    {0, 19, 37, 56, 74, 93, 111, 130, 148, 167, 186, 204, 223, 241, 255, 255, 255}};

// What the texture takes off a channel of four times the usual precision: (179 t + 64) >> 7, at
// most 357. Here times 64.
HWY_INLINE VU16 darkening64(VI16 t) {
  const VI16 darkening =
      hn::MulFixedPoint15(hn::ShiftLeft<1>(t), hn::Set(di16, std::int16_t{179 << 7}));
  return hn::BitCast(du16, hn::ShiftLeft<6>(darkening));
}

// x = 10 bits of input times 64: knot x >> 12, f = x / 64 mod 64 between the knots. Returns the
// index for the low byte of each lane.
HWY_INLINE VI16 fraction512(VU16 x64) {
  return hn::BitCast(di16, hn::And(hn::ShiftLeft<3>(x64), hn::Set(du16, 0x7E00)));
}

// Linear between the knots, rounded: knot + ((step * f + 32) >> 6), saturated. The shift is
// mulFixedPoint15(step, f << 9).
HWY_INLINE V8 FineCurveLookup(const Curve& curve, VU16 even64, VU16 odd64) {
  const VU16 oddIndex = hn::And(hn::ShiftRight<4>(odd64), hn::Set(du16, 0x0F00));
  const V8 index = hn::BitCast(d8, hn::Or(hn::ShiftRight<12>(even64), oddIndex));
  const EvenOdd step = split(hn::TableLookupBytes(curve.steps, index));
  const EvenOdd between = mulFixedPoint15(step, {fraction512(even64), fraction512(odd64)});
  return hn::SaturatedAdd(hn::TableLookupBytes(curve.knots, index), join(between));
}

template <bool kStrong>
struct Xpro2Step : TextureStep {
  RgbCurves curves;
  Curve texture;

  explicit Xpro2Step(const LookJob& job)
      : curves(rampedCurves(job, kCurves)), texture(textureCurve(job, kStrongTexture)) {}

  // max(0, 4 c - darkening); c * 256 is 4 c times 64.
  HWY_INLINE V8 channel(const Curve& curve, V8 c, VU16 evenDarkening, VU16 oddDarkening) const {
    const VU16 pairs = hn::BitCast(du16, c);
    const VU16 even = hn::ShiftLeft<8>(pairs), odd = hn::And(pairs, hn::Set(du16, 0xFF00));
    return FineCurveLookup(curve, hn::SaturatedSub(even, evenDarkening),
                           hn::SaturatedSub(odd, oddDarkening));
  }

  struct Darkening {
    Rgb colour;
    VU16 even, odd;
  };

  HWY_INLINE Darkening darkening(const Pixels<Texture>& p) const {
    const EvenOdd t = split(kStrong ? CurveLookup(texture, p.texels) : p.texels);
    return {p.colour, darkening64(t.even), darkening64(t.odd)};
  }
  HWY_INLINE Rgb graded(const Darkening& d) const {
    return {channel(curves.r, d.colour.r, d.even, d.odd),
            channel(curves.g, d.colour.g, d.even, d.odd),
            channel(curves.b, d.colour.b, d.even, d.odd)};
  }
  using Stages = StageList<&Xpro2Step::darkening, &Xpro2Step::graded>;
};

}  // namespace

const Look kXpro2 = makeTwoStrengthLook<Xpro2Step>(&kCurves);

}  // namespace lumora::HWY_NAMESPACE
