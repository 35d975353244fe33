// The looks that bend each channel by a curve of its own. Level sources only.
#pragma once

#include "looks/looks.h"
#include "looks/run_forms.h"

namespace lumora::HWY_NAMESPACE {

template <const BuiltInCurves& kCurves>
struct CurveStep : ColourStep {
  RgbCurves curves;

  explicit CurveStep(const LookJob& job) : curves(rampedCurves(job, kCurves)) {}

  HWY_INLINE Rgb operator()(const Pixels<Texture>& p) const {
    return CurveLookup(curves, p.colour);
  }
};

template <const BuiltInCurves& kCurves>
constexpr Look makeCurveLook() {
  return makeLook<CurveStep<kCurves>>(&kCurves);
}

}  // namespace lumora::HWY_NAMESPACE
