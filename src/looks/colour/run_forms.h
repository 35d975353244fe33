// Turns a look's step into its run forms for the three formats. Level sources only.
#pragma once

#include "looks/colour/curves.h"
#include "looks/colour/walk.h"

namespace lumora::HWY_NAMESPACE {

// What the steps of most looks share; a step names what differs.
struct ColourStep {
  using Texture = NoTexture;
  static constexpr NvConversion kConversion{};
};

template <class Step>
void runRgba(const LookJob& job) {
  walkRgba(job, Step(job));
}

template <class Step, ChromaOrder kOrder>
void runNv(const LookJob& job) {
  walkNv<kOrder>(job, Step(job));
}

// A step is made from the job once per run, before any pixel.
template <class RgbaStep, class NvStep = RgbaStep>
constexpr Look makeLook(const BuiltInCurves* builtIn = nullptr) {
  return {runRgba<RgbaStep>, runNv<NvStep, ChromaOrder::kVU>, runNv<NvStep, ChromaOrder::kUV>,
          RgbaStep::Texture::kBytesPerPixel, builtIn};
}

// Calls the run form of the plain or of the strong step, for looks that do more work above the
// plain strength.
template <RunForm kPlain, RunForm kStrong>
void runByStrength(const LookJob& job) {
  (job.ratio > kPlainRatio ? kStrong : kPlain)(job);
}

template <template <bool kStrong> class RgbaStep, template <bool kStrong> class NvStep = RgbaStep>
constexpr Look makeTwoStrengthLook(const BuiltInCurves* builtIn = nullptr) {
  using Plain = NvStep<false>;
  using Strong = NvStep<true>;
  return {runByStrength<runRgba<RgbaStep<false>>, runRgba<RgbaStep<true>>>,
          runByStrength<runNv<Plain, ChromaOrder::kVU>, runNv<Strong, ChromaOrder::kVU>>,
          runByStrength<runNv<Plain, ChromaOrder::kUV>, runNv<Strong, ChromaOrder::kUV>>,
          RgbaStep<false>::Texture::kBytesPerPixel, builtIn};
}

HWY_INLINE bool usesStoredCurves(const LookJob& job) {
  return job.block != nullptr && *job.block == 0;
}

// Curve `channel` of the tuning block where it is in use, else the built-in one. The curves follow
// the flag, in one block two more bytes as well.
HWY_INLINE Knots blockOrBuiltIn(const LookJob& job, const BuiltInCurves& builtIn, int channel,
                                int firstCurveOffset = 1) {
  if (!usesStoredCurves(job)) return builtIn.plain[channel];
  ToneCurve stored;
  memcpy(&stored, job.block + firstCurveOffset + channel * static_cast<int>(sizeof stored),
         sizeof stored);
  return stored.knots();
}

// The curves in use, ramped toward the strong ones.
HWY_INLINE Curve rampedCurve(const LookJob& job, const BuiltInCurves& builtIn, int channel) {
  const Knots base = blockOrBuiltIn(job, builtIn, channel);
  return Curve(RampCurve(base, builtIn.strong[channel], job.ratio));
}

HWY_INLINE RgbCurves rampedCurves(const LookJob& job, const BuiltInCurves& builtIn) {
  return {rampedCurve(job, builtIn, 0), rampedCurve(job, builtIn, 1), rampedCurve(job, builtIn, 2)};
}

HWY_INLINE RgbCurves plainCurves(const LookJob& job, const BuiltInCurves& builtIn) {
  return {Curve(blockOrBuiltIn(job, builtIn, 0)), Curve(blockOrBuiltIn(job, builtIn, 1)),
          Curve(blockOrBuiltIn(job, builtIn, 2))};
}

// The curve in use; a stored one moves up to halfway toward the strong one.
HWY_INLINE Curve halfRampedCurve(const LookJob& job, const BuiltInCurves& builtIn, int channel) {
  const Knots base = blockOrBuiltIn(job, builtIn, channel);
  if (!usesStoredCurves(job)) return Curve(base);
  return Curve(rampHalfway(base, builtIn.strong[channel], job.ratio));
}

}  // namespace lumora::HWY_NAMESPACE
