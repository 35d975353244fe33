// HEIBAI: black and white.
#include "looks/looks.h"
#include "looks/run_forms.h"

namespace lumora::HWY_NAMESPACE {
namespace {

struct HeibaiStep : ColourStep {
  explicit HeibaiStep(const LookJob&) {}

  HWY_INLINE Rgb operator()(const Pixels<Texture>& p) const { return {p.luma, p.luma, p.luma}; }
};

// The luma of NV pictures already is the grey value.
template <class Mix>
void runNv(const LookJob& job) {
  neutraliseChroma(job.rows, Mix(job.ratio));
}
constexpr RunForm kNvHeibai = runByStrength<runNv<MixByWeight>, runNv<TakeNew>>;

}  // namespace

const Look kHeibai{kRgbaForm<HeibaiStep>, kNvHeibai, 0, nullptr};

}  // namespace lumora::HWY_NAMESPACE
