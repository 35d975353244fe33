// MORAN: toned monochrome, shadows slightly lifted and mid-tones brightened by one curve.
#include "looks/looks.h"
#include "looks/run_forms.h"

namespace lumora::HWY_NAMESPACE {
namespace {

// Plain, then strong
constexpr BuiltInCurves kCurves{
    1,
    {{{1, 17, 36, 57, 78, 101, 125, 148, 170, 189, 205, 218, 228, 238, 246, 252, 255}}},
    {{{2, 18, 41, 69, 98, 132, 166, 193, 213, 226, 236, 243, 248, 251, 253, 254, 255}}}};

struct MoranStep : ColourStep {
  Curve curve;

  explicit MoranStep(const LookJob& job) : curve(rampedCurve(job, kCurves, 0)) {}

  HWY_INLINE V8 operator()(V8 grey, const std::uint8_t*) const { return CurveLookup(curve, grey); }
  HWY_INLINE Rgb operator()(const Pixels<Texture>& p) const {
    const V8 toned = CurveLookup(curve, p.luma);
    return {toned, toned, toned};
  }
};

template <class Mix>
void runNv(const LookJob& job) {
  walkBytes<1, NoTexture>(job.rows, MoranStep(job), Mix(job.ratio));
  neutraliseChroma(job.rows, Mix(job.ratio));
}
constexpr RunForm kNvMoran = runByStrength<runNv<MixByWeight>, runNv<TakeNew>>;

}  // namespace

const Look kMoran{kRgbaForm<MoranStep>, kNvMoran, 0, &kCurves};

}  // namespace lumora::HWY_NAMESPACE
