// Evaluation of tone curves on vectors of pixels, and their ramps by strength. Level sources only.
#pragma once

#include "lumora/filters.h"
#include "pixels/pair_products.h"
#include "pixels/tone_curve.h"

namespace lumora::HWY_NAMESPACE {

inline constexpr Knots kIdentityCurve{
    {0, 16, 32, 48, 64, 80, 96, 112, 128, 144, 160, 176, 192, 208, 224, 240, 255}};

// How far a strength is above the full one, 0..16.
HWY_INLINE int strongWeight(int ratio) {
  return ratio > LUMORA_FULL_STRENGTH ? ratio - LUMORA_FULL_STRENGTH : 0;
}

inline constexpr int kStrongestWeight = LUMORA_STRONGEST - LUMORA_FULL_STRENGTH;

// Each value of one table on its way to that of another, `weight` sixteenths or, with 5 bits,
// thirty-seconds of it: (base (2^bits - weight) + strong weight + 2^(bits - 1)) >> bits.
template <class Table>
HWY_NOINLINE Table RampCurve(const Table& base, const Table& strong, int weight, int bits = 4) {
  Table ramped;
  for (size_t j = 0; j < sizeof ramped.at; ++j) {
    const int sum = ((1 << bits) - weight) * base.at[j] + weight * strong.at[j];
    ramped.at[j] = static_cast<std::uint8_t>((sum + (1 << bits >> 1)) >> bits);
  }
  return ramped;
}

// A curve in two 16-byte tables: the knots at 0..240 and the step from each to the next, modulo
// 256. The last knot lives only in the last step.
struct CurveTables {
  HWY_ALIGN std::uint8_t knots[16];
  HWY_ALIGN std::uint8_t steps[16];
};

// What is done once per run is not repeated in the code of every walk.
HWY_NOINLINE inline CurveTables tablesOf(const Knots& k) {
  CurveTables tables;
  for (int j = 0; j < 16; ++j) {
    tables.knots[j] = k.at[j];
    tables.steps[j] = static_cast<std::uint8_t>(k.at[j + 1] - k.at[j]);
  }
  return tables;
}

// The tables repeated in every 128-bit block.
struct Curve {
  V8 knots;
  V8 steps;

  HWY_INLINE explicit Curve(const Knots& k) {
    const CurveTables tables = tablesOf(k);
    knots = hn::LoadDup128(d8, tables.knots);
    steps = hn::LoadDup128(d8, tables.steps);
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
