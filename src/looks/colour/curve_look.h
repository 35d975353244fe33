// The looks that bend each channel by a curve of its own. Level sources only.
#pragma once

#include "looks/colour/colour_looks.h"
#include "looks/colour/run_forms.h"

namespace lumora::HWY_NAMESPACE {

template <const BuiltInCurves& kPlain, const Knots (&kStrong)[3]>
struct CurveStep : ColourStep {
  RgbCurves curves;

  explicit CurveStep(const LookJob& job) : curves(rampedCurves(job, kPlain, kStrong)) {}

  HWY_INLINE Rgb operator()(const Pixels<Texture>& p) const {
    return CurveLookup(curves, p.colour);
  }
};

template <const BuiltInCurves& kPlain, const Knots (&kStrong)[3]>
constexpr Look makeCurveLook() {
  return makeLook<CurveStep<kPlain, kStrong>>(&kPlain);
}

}  // namespace lumora::HWY_NAMESPACE
