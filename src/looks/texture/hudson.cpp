// HUDSON: a cool film look: the texture by overlay, then a curve per channel; above strength 16
// the same again on its own result, mixed in by the strength.
#include <type_traits>

#include "looks/texture/texture_step.h"

namespace lumora::HWY_NAMESPACE {
namespace {

// R, G, B
constexpr BuiltInCurves kCurves{
    3,
    {
        {{36, 46, 58, 72, 83, 95, 109, 125, 138, 153, 168, 183, 198, 213, 228, 241, 255}},
        {{0, 20, 40, 60, 77, 93, 109, 125, 141, 156, 171, 186, 201, 214, 228, 242, 255}},
        {{0, 29, 51, 72, 96, 114, 132, 149, 167, 183, 198, 209, 219, 230, 238, 247, 255}},
    },
    {}};

// c t / 128 up to 128; above, the same with both turned over: 255 - (255 - c)(255 - t) / 128. With
// y = t - 128, or its complement where turned, c t / 128 is c + ((c y) >> 7): c is at most 128
// then, y and the shifted product fit signed bytes. The texture comes as y.
HWY_INLINE V8 OverlayTexture(V8 c, V8 y) {
  const V8 turned = hn::VecFromMask(d8, hn::Gt(c, hn::Set(d8, 128)));
  const V8 a = hn::Xor(c, turned);
  const V8 moved = joinShifted<7>(products(a, hn::Xor(y, turned)));
  return hn::Xor(turned, hn::Add(a, moved));
}

template <bool kStrong>
struct HudsonStep : TextureStep {
  static constexpr NvConversion kConversion{.neutralIn = 128, .neutralOut = 128};
  RgbCurves curves;
  V8 weights;
  bool isDouble;  // nothing of the single result is left

  explicit HudsonStep(const LookJob& job)
      : curves(plainCurves(job, kCurves)),
        weights(bytePairs(kStrongestWeight - strongWeight(job.ratio), strongWeight(job.ratio))),
        isDouble(job.ratio == LUMORA_STRONGEST) {}

  struct Overlaid {
    Rgb colour;
    V8 y;
  };
  struct Twice {
    Rgb once, twice;
  };

  static HWY_INLINE Rgb overlay(const Rgb& c, V8 y) {
    return {OverlayTexture(c.r, y), OverlayTexture(c.g, y), OverlayTexture(c.b, y)};
  }
  HWY_INLINE Overlaid overlaid(const Pixels<Texture>& p) const {
    const V8 y = hn::Sub(p.texels, hn::Set(d8, 128));
    return {overlay(p.colour, y), y};
  }
  HWY_INLINE Rgb graded(const Overlaid& o) const { return CurveLookup(curves, o.colour); }

  HWY_INLINE Overlaid gradedOnce(const Overlaid& o) const { return {graded(o), o.y}; }
  HWY_INLINE Twice overlaidAgain(const Overlaid& o) const {
    return {o.colour, overlay(o.colour, o.y)};
  }
  HWY_INLINE Twice gradedAgain(const Twice& o) const {
    return {o.once, CurveLookup(curves, o.twice)};
  }
  HWY_INLINE Rgb mixed(const Twice& o) const {
    if (isDouble) return o.twice;
    return {weightedMean<4>(o.once.r, o.twice.r, weights),
            weightedMean<4>(o.once.g, o.twice.g, weights),
            weightedMean<4>(o.once.b, o.twice.b, weights)};
  }

  using OnceStages = StageList<&HudsonStep::overlaid, &HudsonStep::graded>;
  using TwiceStages =
      StageList<&HudsonStep::overlaid, &HudsonStep::gradedOnce, &HudsonStep::overlaidAgain,
                &HudsonStep::gradedAgain, &HudsonStep::mixed>;
  using Stages = std::conditional_t<kStrong, TwiceStages, OnceStages>;
};

}  // namespace

const Look kHudson = makeTwoStrengthLook<HudsonStep>(&kCurves);

}  // namespace lumora::HWY_NAMESPACE
