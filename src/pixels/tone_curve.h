// Tone curves as they are stored.
#pragma once

#include <cstdint>

namespace lumora {

inline constexpr int kKnotCount = 17;

// Outputs at the inputs 0, 16, 32, ..., 256, in that order. Between them a curve is linear.
struct Knots {
  std::uint8_t at[kKnotCount];
};

// A curve inside a tuning block: eight triples (knot j, knot 8 + j, knot 16), the order in which a
// three-way de-interleaving load gives the low knots, the high knots and the last one.
struct ToneCurve {
  std::uint8_t bytes[24];

  constexpr Knots knots() const {
    Knots knots{};
    for (int j = 0; j < 8; ++j) {
      knots.at[j] = bytes[3 * j];
      knots.at[8 + j] = bytes[3 * j + 1];
    }
    knots.at[16] = bytes[2];
    return knots;
  }

  static constexpr ToneCurve of(const Knots& knots) {
    ToneCurve curve{};
    for (int j = 0; j < 8; ++j) {
      curve.bytes[3 * j] = knots.at[j];
      curve.bytes[3 * j + 1] = knots.at[8 + j];
      curve.bytes[3 * j + 2] = knots.at[16];
    }
    return curve;
  }
};
static_assert(sizeof(ToneCurve) == 24);

// The block of one curve look inside the tuning parameters. Flag 0: the stored curves are in use;
// any other value: the look's built-in ones.
template <int kCurveCount>
struct LookCurveBlockOf {
  std::uint8_t flag;
  ToneCurve curves[kCurveCount];
};
using LookCurveBlock = LookCurveBlockOf<3>;
static_assert(sizeof(LookCurveBlock) == 73 && sizeof(LookCurveBlockOf<1>) == 25);

}  // namespace lumora
