// MEISHIMENGHUAN: the curves of the glow look, which deepen the shadows and lift the highlights. No
// copy of the picture is blended into this look, so below the plain strength the curves themselves
// go back toward the straight line.
#include "looks/looks.h"
#include "looks/run_forms.h"

namespace lumora::HWY_NAMESPACE {
namespace {

// R, G, B: plain, then strong
constexpr BuiltInCurves kCurves{
    3,
    {
        {{0, 7, 25, 52, 82, 112, 139, 164, 185, 204, 219, 231, 240, 246, 251, 254, 255}},
        {{0, 6, 22, 46, 74, 104, 133, 161, 185, 204, 219, 231, 240, 246, 251, 254, 255}},
        {{2, 8, 26, 53, 83, 112, 139, 163, 185, 204, 219, 231, 240, 246, 251, 254, 255}},
    },
    {
        {{0, 5, 21, 56, 98, 138, 168, 193, 210, 224, 234, 241, 247, 250, 253, 254, 255}},
        {{0, 4, 17, 44, 83, 125, 162, 190, 210, 224, 234, 241, 247, 250, 253, 254, 255}},
        {{2, 6, 22, 57, 100, 137, 168, 192, 210, 224, 234, 241, 247, 250, 253, 254, 255}},
    }};

// Two bytes that no stage reads lie between the tuning block's flag and its curves.
constexpr int kFirstCurveOffset = 3;

HWY_INLINE Curve curveOf(const LookJob& job, int channel) {
  const Knots base = blockOrBuiltIn(job, kCurves, channel, kFirstCurveOffset);
  const int strong = strongWeight(job.ratio);
  const Knots weakened = RampCurve(kIdentityCurve, base, job.ratio - strong);
  return Curve(RampCurve(weakened, kCurves.strong[channel], strong));
}

struct GlowCurveStep : ColourStep {
  using Mix = TakeNew;
  RgbCurves curves;

  explicit GlowCurveStep(const LookJob& job)
      : curves{curveOf(job, 0), curveOf(job, 1), curveOf(job, 2)} {}

  HWY_INLINE Rgb operator()(const Pixels<Texture>& p) const {
    return CurveLookup(curves, p.colour);
  }
};

}  // namespace

const Look kMeishimenghuan = makeLook<GlowCurveStep>(&kCurves);

}  // namespace lumora::HWY_NAMESPACE
