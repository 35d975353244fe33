// MYFAIR: dusk: channels that stand out are boosted, graded, and blended with the texture the
// softer the more they stand out.
#include "looks/texture/texture_step.h"

namespace lumora::HWY_NAMESPACE {
namespace {

// R, G, B: plain, then strong. Only stored curves move toward the strong ones.
constexpr BuiltInCurves kCurves{
    3,
    {
        {{15, 19, 24, 29, 36, 42, 51, 60, 73, 100, 127, 155, 176, 192, 209, 222, 235}},
        {{9, 14, 19, 27, 37, 44, 50, 59, 68, 92, 112, 135, 157, 171, 187, 201, 210}},
        {{9, 15, 20, 27, 34, 41, 49, 62, 74, 100, 124, 144, 163, 175, 188, 199, 214}},
    },
    {
        {{47, 52, 58, 67, 78, 89, 109, 132, 160, 177, 195, 207, 215, 221, 227, 231, 235}},
        {{31, 39, 47, 59, 72, 84, 101, 139, 160, 175, 186, 195, 201, 205, 209, 212, 215}},
        {{29, 36, 44, 62, 83, 94, 105, 128, 155, 163, 173, 185, 197, 201, 206, 211, 216}},
    }};

constexpr Knots kStrongTexture{
    {0, 0, 0, 24, 48, 72, 96, 120, 144, 168, 192, 216, 240, 255, 255, 255, 255}};

constexpr int kThreshold = 144;
constexpr int kMultiplyWeight = 43;
constexpr int kScreenWeight = 53;
constexpr int kScreenReference = 173;

// Up to the threshold (a b 43 + 2048) >> 12, above it 255 - (((255 - a)(173 - b) 53 + 2048) >> 12),
// both clamped: where b exceeds 173 the second is 255. The factors carry 2 and 4 of the rounding
// shift's 8; results are at most 385.
HWY_INLINE V8 blended(V8 a, V8 b) {
  const auto isScreen = hn::Gt(a, hn::Set(d8, kThreshold));
  const V8 turned = hn::VecFromMask(d8, isScreen);
  const V8 room = hn::SaturatedSub(hn::Set(d8, kScreenReference), b);
  const Factors weight2 = eitherFactor(isScreen, 2 * kScreenWeight, 2 * kMultiplyWeight);
  const EvenOdd v = mulFixedPoint15(products(hn::Xor(a, turned), weight2),
                                    weightedHalves<4>(hn::IfThenElse(isScreen, room, b)));
  return hn::Xor(turned, joinClamped(v));
}

HWY_INLINE Rgb blended(const Rgb& a, const Rgb& b) {
  return {blended(a.r, b.r), blended(a.g, b.g), blended(a.b, b.b)};
}

// How much a channel exceeds the sum of the other two, at least 0. At most one of a pixel's three
// channels has an excess.
HWY_INLINE V8 excess(V8 c, V8 other, V8 third) {
  return hn::SaturatedSub(c, hn::SaturatedAdd(other, third));
}

// e / 8.
HWY_INLINE V8 eighth(V8 e) {
  const VU16 shifted = hn::ShiftRight<3>(hn::BitCast(du16, e));
  return hn::And(hn::BitCast(d8, shifted), hn::Set(d8, 0x1F));
}

// e max(144 - t, 0) >> 10, at most 35: the high half of 64 e times the rest.
HWY_INLINE V8 softening(V8 e, V8 t) {
  const EvenOdd e64 = weightedHalves<64>(e);
  const EvenOdd room = split(hn::SaturatedSub(hn::Set(d8, kThreshold), t));
  return join(hn::MulHigh(e64.even, room.even), hn::MulHigh(e64.odd, room.odd));
}

template <bool kStrong>
struct MyfairStep : TextureStep {
  static constexpr NvConversion kConversion{.neutralIn = 128, .neutralOut = 128};
  RgbCurves curves;
  Curve texture;

  explicit MyfairStep(const LookJob& job)
      : curves{halfRampedCurve(job, kCurves, 0), halfRampedCurve(job, kCurves, 1),
               halfRampedCurve(job, kCurves, 2)},
        texture(textureCurve(job, kStrongTexture)) {}

  struct Boosted {
    Rgb colour;
    Rgb texels;
  };

  // Boost and softening apply to the channel that has the excess: for it they are the smaller
  // value, for the others the excess is 0.
  HWY_INLINE Boosted boosted(const Pixels<Texture>& p) const {
    const Rgb& c = p.colour;
    const V8 t = kStrong ? TruncCurveLookup(texture, p.texels) : p.texels;
    const Rgb e{excess(c.r, c.g, c.b), excess(c.g, c.r, c.b), excess(c.b, c.r, c.g)};
    const V8 largest = hn::Or(e.r, hn::Or(e.g, e.b));
    const V8 boost = eighth(largest), soft = softening(largest, t);
    return {{hn::SaturatedAdd(c.r, hn::Min(e.r, boost)), hn::SaturatedAdd(c.g, hn::Min(e.g, boost)),
             hn::SaturatedAdd(c.b, hn::Min(e.b, boost))},
            {hn::Add(t, hn::Min(e.r, soft)), hn::Add(t, hn::Min(e.g, soft)),
             hn::Add(t, hn::Min(e.b, soft))}};
  }
  HWY_INLINE Rgb graded(const Boosted& v) const {
    return blended(TruncCurveLookup(curves, v.colour), v.texels);
  }

  using Stages = StageList<&MyfairStep::boosted, &MyfairStep::graded>;
};

}  // namespace

const Look kMyfair = makeTwoStrengthLook<MyfairStep>(&kCurves);

}  // namespace lumora::HWY_NAMESPACE
