// HEIBAI: black and white.
#include "looks/colour/colour_looks.h"
#include "looks/colour/run_forms.h"

namespace lumora::HWY_NAMESPACE {
namespace {

struct HeibaiStep : ColourStep {
  explicit HeibaiStep(const LookJob&) {}

  HWY_INLINE Rgb operator()(const Pixels<Texture>& p) const { return {p.luma, p.luma, p.luma}; }
};

}  // namespace

// The luma of NV pictures already is the grey value.
const Look kHeibai{runRgba<HeibaiStep>, neutraliseChroma, neutraliseChroma, 0, nullptr};

}  // namespace lumora::HWY_NAMESPACE
