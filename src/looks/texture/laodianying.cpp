// LAODIANYING: an old, tinted monochrome film: grey under the shade texture, times the tint. The
// picture has been aged before (film_ageing.h).
#include "looks/texture/texture_step.h"

namespace lumora::HWY_NAMESPACE {
namespace {

// R, G, B
struct Tint {
  std::uint8_t at[3];
};
constexpr Tint kPlainTint{{255, 250, 172}};
constexpr Tint kStrongTint{{255, 245, 136}};

constexpr Knots kStrongShade{
    {0, 9, 21, 34, 48, 63, 78, 94, 111, 128, 145, 163, 181, 199, 218, 236, 255}};

// The look's part of the tuning parameters. Flag 0: the stored tint is in use.
struct LookTintBlock {
  std::uint8_t flag;
  Tint tint;
  std::uint8_t level;  // what the flag was derived from
};
static_assert(sizeof(LookTintBlock) == 5);

// A stored tint holds up to the full strength only; above it the built-in one moves toward the
// strong one.
HWY_INLINE Tint tintOf(const LookJob& job) {
  const int weight = strongWeight(job.ratio);
  if (weight > 0 || !usesStoredCurves(job)) return RampCurve(kPlainTint, kStrongTint, weight);
  LookTintBlock stored;
  memcpy(&stored, job.block, sizeof stored);
  return stored.tint;
}

// (v tint + 128) >> 8 with the tint times 128.
HWY_INLINE V8 tinted(const EvenOdd& v, VI16 tint128) {
  return join(mulFixedPoint15(v, {tint128, tint128}));
}

// Bright pixels times the shade, over 256: rounded in RGBA pictures, truncated in NV pictures.
template <bool kRounds, bool kStrong>
struct LaodianyingStep : TextureStep {
  using Mix = TakeNew;  // the picture it would be mixed with has been aged
  static constexpr NvConversion kConversion{.neutralOut = 128,
                                            .means = NvConversion::Means::kHalfAdds};
  VI16 r128, g128, b128;
  Curve shade;

  explicit LaodianyingStep(const LookJob& job) : shade(textureCurve(job, kStrongShade)) {
    const Tint tint = tintOf(job);
    r128 = hn::Set(di16, static_cast<std::int16_t>(tint.at[0] << 7));
    g128 = hn::Set(di16, static_cast<std::int16_t>(tint.at[1] << 7));
    b128 = hn::Set(di16, static_cast<std::int16_t>(tint.at[2] << 7));
  }

  // The product fills unsigned lanes.
  static HWY_INLINE VI16 truncated(VI16 product) {
    return hn::BitCast(di16, hn::ShiftRight<8>(hn::BitCast(du16, product)));
  }
  static HWY_INLINE EvenOdd shaded(const EvenOdd& grey, V8 s) {
    if constexpr (kRounds) return mulFixedPoint15(grey, times128(s));
    const EvenOdd factor = split(s);
    return {truncated(hn::Mul(grey.even, factor.even)), truncated(hn::Mul(grey.odd, factor.odd))};
  }

  HWY_INLINE Rgb operator()(const Pixels<Texture>& p) const {
    const EvenOdd v = shaded(split(p.luma), kStrong ? CurveLookup(shade, p.texels) : p.texels);
    return {tinted(v, r128), tinted(v, g128), tinted(v, b128)};
  }
};

template <bool kStrong>
using RgbaStep = LaodianyingStep<true, kStrong>;
template <bool kStrong>
using NvStep = LaodianyingStep<false, kStrong>;

}  // namespace

const Look kLaodianying = makeTwoStrengthLook<RgbaStep, NvStep>();

}  // namespace lumora::HWY_NAMESPACE
