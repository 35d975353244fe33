// Turns a look's step into its run forms, of RGBA and of NV pictures. Level sources only.
#pragma once

#include "looks/look.h"
#include "pixels/curves.h"
#include "pixels/walk.h"

namespace lumora::HWY_NAMESPACE {

// What the steps of most looks share; a step names what differs.
struct ColourStep {
  using Texture = NoTexture;
  static constexpr NvConversion kConversion{};
  using Mix = MixByWeight;  // below the full strength
};

// The walks, each a function of its own: together in one they would share its registers. A step is
// made from the job once per run, before any pixel.
template <class Step, class Mix>
HWY_NOINLINE void walkRgbaBy(const LookJob& job) {
  walkRgba(job.rows, Step(job), Mix(job.ratio));
}

template <class Step, class Mix>
HWY_NOINLINE void walkNvBy(const LookJob& job) {
  walkNv(job.rows, Step(job), Mix(job.ratio));
}

// Below the full strength a look is mixed into the picture; above it some do more work.
template <RunForm kMixed, RunForm kPlain, RunForm kStrong = kPlain>
void runByStrength(const LookJob& job) {
  if (job.ratio < LUMORA_FULL_STRENGTH) return kMixed(job);
  (job.ratio > LUMORA_FULL_STRENGTH ? kStrong : kPlain)(job);
}

template <class Step, class Strong = Step>
constexpr RunForm kRgbaForm = runByStrength<walkRgbaBy<Step, typename Step::Mix>,
                                            walkRgbaBy<Step, TakeNew>, walkRgbaBy<Strong, TakeNew>>;

template <class Step, class Strong>
constexpr RunForm kNvForm = runByStrength<walkNvBy<Step, typename Step::Mix>,
                                          walkNvBy<Step, TakeNew>, walkNvBy<Strong, TakeNew>>;

template <class Step, class Strong = Step, class NvStep = Step, class NvStrong = Strong>
constexpr Look makeLook(const BuiltInCurves* builtIn = nullptr) {
  return {kRgbaForm<Step, Strong>, kNvForm<NvStep, NvStrong>, Step::Texture::kBytesPerPixel,
          builtIn};
}

template <template <bool kStrong> class Step, template <bool kStrong> class NvStep = Step>
constexpr Look makeTwoStrengthLook(const BuiltInCurves* builtIn = nullptr) {
  return makeLook<Step<false>, Step<true>, NvStep<false>, NvStep<true>>(builtIn);
}

HWY_INLINE bool usesStoredCurves(const LookJob& job) {
  return job.block != nullptr && *job.block == 0;
}

// Curve `channel` of the tuning block where it is in use, else the built-in one. The curves follow
// the flag, in one block two more bytes as well.
HWY_NOINLINE inline Knots blockOrBuiltIn(const LookJob& job, const BuiltInCurves& builtIn,
                                         int channel, int firstCurveOffset = 1) {
  if (!usesStoredCurves(job)) return builtIn.plain[channel];
  ToneCurve stored;
  memcpy(&stored, job.block + firstCurveOffset + channel * static_cast<int>(sizeof stored),
         sizeof stored);
  return stored.knots();
}

// The curves in use, ramped toward the strong ones.
HWY_INLINE Curve rampedCurve(const LookJob& job, const BuiltInCurves& builtIn, int channel) {
  const Knots base = blockOrBuiltIn(job, builtIn, channel);
  return Curve(RampCurve(base, builtIn.strong[channel], strongWeight(job.ratio)));
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
  return Curve(RampCurve(base, builtIn.strong[channel], strongWeight(job.ratio), 5));
}

}  // namespace lumora::HWY_NAMESPACE
