// What the steps of the texture looks share. Level sources only.
#pragma once

#include "looks/looks.h"
#include "looks/run_forms.h"

namespace lumora::HWY_NAMESPACE {

// A step names what differs.
struct TextureStep : ColourStep {
  using Texture = GreyTexture;
  static constexpr NvConversion kConversion{.neutralIn = 127, .neutralOut = 128};
};

// A texture's own curve: the identity up to strength 16, above it on the way to a strong one.
HWY_INLINE Curve textureCurve(const LookJob& job, const Knots& strong) {
  return Curve(RampCurve(kIdentityCurve, strong, strongWeight(job.ratio)));
}

}  // namespace lumora::HWY_NAMESPACE
