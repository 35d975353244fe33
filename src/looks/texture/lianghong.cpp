// LIANGHONG: a light leak: a colour texture by screen, then one lifting curve.
#include "looks/texture/texture_step.h"

namespace lumora::HWY_NAMESPACE {
namespace {

constexpr Knots kTone{
    {0, 16, 33, 51, 70, 91, 112, 134, 155, 174, 191, 206, 219, 230, 240, 249, 255}};
constexpr Knots kStrongTone{
    {0, 16, 34, 55, 78, 105, 134, 162, 186, 204, 218, 229, 237, 243, 249, 252, 255}};

constexpr Knots kStrongTexture{
    {0, 28, 48, 67, 84, 101, 117, 132, 147, 161, 176, 190, 203, 217, 230, 243, 255}};

template <bool kStrong>
struct LianghongStep : TextureStep {
  using Texture = RgbTexture;
  static constexpr NvConversion kConversion{.neutralIn = 127, .neutralOut = 127};
  Curve curve;
  Curve texture;

  explicit LianghongStep(const LookJob& job)
      : curve(RampCurve(kTone, kStrongTone, strongWeight(job.ratio))),
        texture(textureCurve(job, kStrongTexture)) {}

  // c + (((255 - c) t + 128) >> 8), which stays within 255.
  static HWY_INLINE V8 screened(V8 c, V8 t) {
    const EvenOdd room2 = weightedHalves<2>(hn::Not(c));
    return hn::Add(c, join(mulFixedPoint15(room2, weightedHalves<64>(t))));
  }
  HWY_INLINE Rgb leaked(const Pixels<Texture>& p) const {
    const Rgb t = kStrong ? CurveLookup(texture, p.texels) : p.texels;
    return {screened(p.colour.r, t.r), screened(p.colour.g, t.g), screened(p.colour.b, t.b)};
  }
  HWY_INLINE Rgb graded(const Rgb& c) const { return CurveLookup(curve, c); }
  using Stages = StageList<&LianghongStep::leaked, &LianghongStep::graded>;
};

}  // namespace

const Look kLianghong = makeTwoStrengthLook<LianghongStep>();

}  // namespace lumora::HWY_NAMESPACE
