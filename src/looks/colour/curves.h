// Evaluation of tone curves on vectors of pixels, and their ramps by strength. Level sources only.
#pragma once

#include "looks/colour/pair_products.h"
#include "looks/colour/tone_curve.h"

namespace lumora::HWY_NAMESPACE {

inline constexpr int kPlainRatio = 16;
inline constexpr int kStrongestRatio = 32;

inline constexpr Knots kIdentityCurve{
    {0, 16, 32, 48, 64, 80, 96, 112, 128, 144, 160, 176, 192, 208, 224, 240, 255}};

// ((32 - ratio) base + (ratio - 16) strong + 8) >> 4 at every knot above ratio 16, the base below.
HWY_INLINE Knots RampCurve(const Knots& base, const Knots& strong, int ratio) {
  if (ratio <= kPlainRatio) return base;
  Knots ramped;
  for (int j = 0; j < kKnotCount; ++j) {
    const int sum = (kStrongestRatio - ratio) * base.at[j] + (ratio - kPlainRatio) * strong.at[j];
    ramped.at[j] = static_cast<std::uint8_t>((sum + 8) >> 4);
  }
  return ramped;
}

// As RampCurve, but only halfway: ratio 32 gives the rounded midpoint.
HWY_INLINE Knots rampHalfway(const Knots& base, const Knots& strong, int ratio) {
  if (ratio <= kPlainRatio) return base;
  Knots ramped;
  for (int j = 0; j < kKnotCount; ++j) {
    const int sum = (48 - ratio) * base.at[j] + (ratio - kPlainRatio) * strong.at[j];
    ramped.at[j] = static_cast<std::uint8_t>((sum + 16) >> 5);
  }
  return ramped;
}

// A curve in two 16-byte tables, repeated in every 128-bit block: the knots at 0..240 and the step
// from each to the next, modulo 256. The last knot lives only in the last step.
struct Curve {
  V8 knots;
  V8 steps;

  HWY_INLINE explicit Curve(const Knots& k) {
    HWY_ALIGN std::uint8_t step[16];
    for (int j = 0; j < 16; ++j) step[j] = static_cast<std::uint8_t>(k.at[j + 1] - k.at[j]);
    knots = hn::LoadDup128(d8, k.at);
    steps = hn::LoadDup128(d8, step);
  }
};

HWY_INLINE V8 highNibble(V8 x) {
  const VU16 shifted = hn::ShiftRight<4>(hn::BitCast(du16, x));
  return hn::And(hn::BitCast(d8, shifted), hn::Set(d8, 0x0F));
}

// The step at each index times f = x mod 16.
HWY_INLINE EvenOdd stepProducts(const Curve& curve, V8 index, V8 x) {
  return products(hn::TableLookupBytes(curve.steps, index), hn::And(x, hn::Set(d8, 0x0F)));
}

// Linear between the knots, rounded: knot + ((step * f + 8) >> 4), saturated. What is added is at
// most 239, so nothing needs masking.
HWY_INLINE V8 CurveLookup(const Curve& curve, V8 x) {
  const V8 index = highNibble(x);
  return hn::SaturatedAdd(hn::TableLookupBytes(curve.knots, index),
                          join(shiftRightRounding<4>(stepProducts(curve, index, x))));
}

// As CurveLookup, truncated: knot + ((step * f) >> 4).
HWY_INLINE V8 TruncCurveLookup(const Curve& curve, V8 x) {
  const V8 index = highNibble(x);
  return hn::SaturatedAdd(hn::TableLookupBytes(curve.knots, index),
                          joinShifted<4>(stepProducts(curve, index, x)));
}

struct RgbCurves {
  Curve r;
  Curve g;
  Curve b;
};

HWY_INLINE Rgb CurveLookup(const RgbCurves& curves, const Rgb& colour) {
  return {CurveLookup(curves.r, colour.r), CurveLookup(curves.g, colour.g),
          CurveLookup(curves.b, colour.b)};
}

HWY_INLINE Rgb CurveLookup(const Curve& curve, const Rgb& colour) {
  return {CurveLookup(curve, colour.r), CurveLookup(curve, colour.g), CurveLookup(curve, colour.b)};
}

HWY_INLINE Rgb TruncCurveLookup(const RgbCurves& curves, const Rgb& colour) {
  return {TruncCurveLookup(curves.r, colour.r), TruncCurveLookup(curves.g, colour.g),
          TruncCurveLookup(curves.b, colour.b)};
}

}  // namespace lumora::HWY_NAMESPACE
