// Mixing of new values into what was there before. Level sources only.
//
// What a walk does with a step's results is a template parameter of the walk: it takes them as they
// are or, below the full strength, mixes them with what it loaded.
#pragma once

#include "lumora/filters.h"
#include "pixels/pair_products.h"

namespace lumora::HWY_NAMESPACE {

struct TakeNew {
  TakeNew() = default;
  HWY_INLINE explicit TakeNew(int) {}  // as if by weight

  HWY_INLINE V8 operator()(V8, V8 after) const { return after; }
  HWY_INLINE Rgb operator()(const Rgb&, const Rgb& after) const { return after; }
};

// (before (16 - weight) + after weight + 8) >> 4, for weights 0..16. What did not change stays.
struct MixByWeight {
  V8 weights;

  HWY_INLINE explicit MixByWeight(int weight)
      : weights(bytePairs(LUMORA_FULL_STRENGTH - weight, weight)) {}

  HWY_INLINE V8 operator()(V8 before, V8 after) const {
    return weightedMean<4>(before, after, weights);
  }
  HWY_INLINE Rgb operator()(const Rgb& before, const Rgb& after) const {
    return {(*this)(before.r, after.r), (*this)(before.g, after.g), (*this)(before.b, after.b)};
  }
};

}  // namespace lumora::HWY_NAMESPACE
