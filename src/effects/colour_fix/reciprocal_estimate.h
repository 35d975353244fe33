// The reciprocal estimate of 32-bit ARM processors (VRECPE), by their published algorithm. Colour
// fix divides by it, so its few correct bits are part of the result on every processor.
#pragma once

#include <cstdint>

namespace lumora {

// The estimate of 1 / x in nine bits: normalised is x scaled into 256..511 (0.5 <= x < 1), the
// result stands for result / 256 and is 256..511.
constexpr int reciprocalEstimate(int normalised) {
  const int midpoint = 2 * normalised + 1;
  return ((1 << 19) / midpoint + 1) / 2;
}

// floor(log2(d)) for d = 1..255.
constexpr int floorLog2(int d) {
  int log = 0;
  while (d >> (log + 1) != 0) ++log;
  return log;
}

// The estimate of 1 / d for d = 1..255 is kReciprocals.at[(d << (7 - floorLog2(d))) - 128] + 256,
// in units of 2^(-9 - floorLog2(d)).
struct Reciprocals {
  std::uint8_t at[128];
};

constexpr Reciprocals makeReciprocals() {
  Reciprocals table{};
  for (int i = 0; i < 128; ++i) {
    table.at[i] = static_cast<std::uint8_t>(reciprocalEstimate(2 * (i + 128)) - 256);
  }
  return table;
}

// Not inline: every vector level keeps its own.
constexpr Reciprocals kReciprocals = makeReciprocals();

// e(d) as the processor's single-precision number, exact; d = 1..255.
constexpr float reciprocalEstimateOf(int d) {
  const int log = floorLog2(d);
  const int estimate = kReciprocals.at[(d << (7 - log)) - 128] + 256;
  return static_cast<float>(estimate) / static_cast<float>(512 << log);
}

}  // namespace lumora
