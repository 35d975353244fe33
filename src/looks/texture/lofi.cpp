// LOFI: high contrast by one curve for all channels, then the texture; above strength 16 the
// texture is laid on a second time, faded in.
#include <type_traits>

#include "looks/texture/texture_step.h"

namespace lumora::HWY_NAMESPACE {
namespace {

// Plain, then strong. Only a stored curve moves toward the strong one.
constexpr BuiltInCurves kCurves{
    1,
    {{{0, 3, 7, 13, 23, 32, 45, 59, 78, 109, 148, 178, 202, 222, 237, 246, 255}}},
    {{{0, 1, 2, 3, 6, 9, 14, 25, 39, 68, 123, 181, 212, 232, 244, 249, 253}}}};

constexpr int kThreshold = 85;
constexpr int kCeiling = 380;
constexpr int kNeutral = 124;
constexpr int kSecondPassOffset = 2000;

// The texture's factors below and above the threshold.
struct TextureFactors {
  EvenOdd dark;   // 2 t
  EvenOdd light;  // 380 - t
};

HWY_INLINE TextureFactors factorsOf(const EvenOdd& t) {
  const VI16 ceiling = hn::Set(di16, kCeiling);
  return {{hn::Add(t.even, t.even), hn::Add(t.odd, t.odd)},
          {hn::Sub(ceiling, t.even), hn::Sub(ceiling, t.odd)}};
}

// c t / 128 up to the threshold, above it 255 - (255 - c)(380 - t) / 256. Products are at most
// 169 * 380, which fills unsigned lanes.
HWY_INLINE V8 OverlayBlend(V8 c, const TextureFactors& f) {
  const V8 turned = hn::VecFromMask(d8, hn::Gt(c, hn::Set(d8, kThreshold)));
  const EvenOdd channel = split(c), a = split(hn::Xor(c, turned));
  const VI16 threshold = hn::Set(di16, kThreshold);
  const EvenOdd factor{hn::IfThenElse(hn::Gt(channel.even, threshold), f.light.even, f.dark.even),
                       hn::IfThenElse(hn::Gt(channel.odd, threshold), f.light.odd, f.dark.odd)};
  return hn::Xor(turned, joinShifted<8>(mul(a, factor)));
}

HWY_INLINE Rgb OverlayBlend(const Rgb& c, const TextureFactors& f) {
  return {OverlayBlend(c.r, f), OverlayBlend(c.g, f), OverlayBlend(c.b, f)};
}

template <bool kStrong>
struct LofiStep : TextureStep {
  static constexpr NvConversion kConversion{.neutralIn = 128, .neutralOut = 128};
  Curve curve;
  VI16 weight;
  VI16 offset;

  explicit LofiStep(const LookJob& job)
      : curve(halfRampedCurve(job, kCurves, 0)),
        weight(hn::Set(di16, static_cast<std::int16_t>(strongWeight(job.ratio)))),
        offset(hn::Set(di16, static_cast<std::int16_t>(
                                 kNeutral * (kStrongestWeight - strongWeight(job.ratio)) +
                                 kSecondPassOffset))) {}

  // Toward neutral: at most (16 * 255 + 2000) >> 5.
  HWY_INLINE VI16 faded(VI16 t) const {
    return hn::ShiftRight<5>(hn::Add(hn::Mul(t, weight), offset));
  }

  HWY_INLINE EvenOdd faded(const EvenOdd& t) const { return {faded(t.even), faded(t.odd)}; }

  struct Graded {
    Rgb colour;
    V8 texels;
  };

  HWY_INLINE Graded graded(const Pixels<Texture>& p) const {
    return {CurveLookup(curve, p.colour), p.texels};
  }
  HWY_INLINE Rgb blended(const Graded& g) const {
    return OverlayBlend(g.colour, factorsOf(split(g.texels)));
  }
  HWY_INLINE Graded blendedOnce(const Graded& g) const { return {blended(g), g.texels}; }
  HWY_INLINE Rgb blendedAgain(const Graded& g) const {
    return OverlayBlend(g.colour, factorsOf(faded(split(g.texels))));
  }

  using OnceStages = StageList<&LofiStep::graded, &LofiStep::blended>;
  using TwiceStages = StageList<&LofiStep::graded, &LofiStep::blendedOnce, &LofiStep::blendedAgain>;
  using Stages = std::conditional_t<kStrong, TwiceStages, OnceStages>;
};

}  // namespace

const Look kLofi = makeTwoStrengthLook<LofiStep>(&kCurves);

}  // namespace lumora::HWY_NAMESPACE
