// From drawn values to bytes.
#pragma once

#include <cstdint>
#include <cstring>

#include "default_pack/paint/noise.h"

namespace lumora::paint {

// Sides of the pack's large textures.
inline constexpr std::int32_t kSide = 1024;
inline constexpr std::int32_t kLeakSide = 512;

// The middle of a texel, in -1..1 from edge to edge.
inline double centred(std::int32_t index, std::int32_t count) {
  return (2.0 * index + 1.0) / count - 1.0;
}

// How values become bytes.
struct Rounding {
  double low;  // the bytes the look can bear
  double high;
  std::uint32_t seed;
  // In levels. A quarter hides the texture's own steps and packs well; a whole one also hides steps
  // that a look makes of them, where it turns one level into several or several into one.
  double noise = 0.25;
};

// Rounds a large grey texture to bytes, row by row from the top. What a rounding took away or added
// is handed on to the texels right of it and below, so that every small area keeps its mean and
// what remains is too fine to be seen: slow ramps show no contours, not even after their contrast
// was raised. Noise in the decision keeps patterns from forming, and is handed on as well.
class Dither {
 public:
  explicit Dither(const Rounding& rounding) : rule_(rounding) {}

  void roundRow(std::int32_t y, const double* row, std::uint8_t* dst) {
    double right = 0;
    double below[kSide + 2] = {};
    for (std::int32_t x = 0; x < kSide; ++x) {
      const double wanted = clamp(row[x], rule_.low, rule_.high) + due_[x + 1] + right;
      const double noise = rule_.noise * (2 * uniform(x, y, rule_.seed) - 1);
      const double rounded = clamp(std::floor(wanted + noise + 0.5), rule_.low, rule_.high);
      dst[x] = static_cast<std::uint8_t>(rounded);
      const double share = (wanted - rounded) / 16;
      right = 7 * share;
      below[x] += 3 * share;
      below[x + 1] += 5 * share;
      below[x + 2] += share;
    }
    std::memcpy(due_, below, sizeof due_);
  }

 private:
  Rounding rule_;
  double due_[kSide + 2] = {};  // for the next row, one texel more on either side
};

// Fills a large grey texture row by row. drawRow(y, row) writes the row's kSide values.
template <class DrawRow>
void paintRows(std::uint8_t* dst, const Rounding& rounding, DrawRow drawRow) {
  Dither dither(rounding);
  double row[kSide];
  for (std::int32_t y = 0; y < kSide; ++y, dst += kSide) {
    drawRow(y, row);
    dither.roundRow(y, row, dst);
  }
}

// Fills a large grey texture with value(u, v), u and v in -1..1.
template <class Value>
void paintField(std::uint8_t* dst, const Rounding& rounding, Value value) {
  paintRows(dst, rounding, [&value](std::int32_t y, double* row) {
    const double v = centred(y, kSide);
    for (std::int32_t x = 0; x < kSide; ++x) row[x] = value(centred(x, kSide), v);
  });
}

}  // namespace lumora::paint
