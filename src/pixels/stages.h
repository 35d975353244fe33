// Steps of several stages. Level sources only.
#pragma once

#include "pixels/texels.h"

namespace lumora::HWY_NAMESPACE {

// The stages of a step: its member functions, the first one of Pixels, each other one of what the
// one before it returned, the last one to the new colours. A step that consists of one stage may
// have it as its call operator instead.
//
// Steps run on two vectors at a time, which keeps the processor busy while either waits for its own
// results; each stage is done with both before the next one begins.
template <auto kFirst, auto... kRest>
struct StageList {
  template <class Step, class In>
  static HWY_INLINE void run(const Step& step, const In& a, const In& b, Rgb& outA, Rgb& outB) {
    if constexpr (sizeof...(kRest) == 0) {
      outA = (step.*kFirst)(a);
      outB = (step.*kFirst)(b);
    } else {
      const auto nextA = (step.*kFirst)(a);
      const auto nextB = (step.*kFirst)(b);
      StageList<kRest...>::run(step, nextA, nextB, outA, outB);
    }
  }
};

template <class Step, class Texture>
HWY_INLINE void applyStep(const Step& step, Pixels<Texture>& a, Pixels<Texture>& b) {
  if constexpr (requires { typename Step::Stages; }) {
    Step::Stages::run(step, a, b, a.colour, b.colour);
  } else {
    a.colour = step(a);
    b.colour = step(b);
  }
}

}  // namespace lumora::HWY_NAMESPACE
