#include "effects/smoothing/binomial_blur.h"

#include <cassert>

namespace lumora {
namespace {

struct Rows {
  const std::uint8_t* above;
  const std::uint8_t* own;
  const std::uint8_t* below;

  int column(int x) const { return above[x] + 2 * own[x] + below[x]; }
};

// The sum of the weights is 16, so the mean is a byte.
std::uint8_t mean(int before, int own, int behind) {
  return static_cast<std::uint8_t>((before + 2 * own + behind) >> 4);
}

void blurRow(const Rows& rows, int width, std::uint8_t* out) {
  const int last = width - 1;
  out[0] = mean(rows.column(1), rows.column(0), rows.column(1));
  for (int x = 1; x < last; ++x) {
    out[x] = mean(rows.column(x - 1), rows.column(x), rows.column(x + 1));
  }
  out[last] = mean(rows.column(last - 1), rows.column(last), rows.column(last - 1));
}

}  // namespace

void Blur3x3Planes(const PlanarImage& in, const PlanarImage& out) {
  assert(in.widthPixels >= 2 && in.heightRows >= 2);
  const int last = in.heightRows - 1;
  for (int channel = 0; channel < kChannelCount; ++channel) {
    for (int y = 0; y <= last; ++y) {
      const int above = y == 0 ? 1 : y - 1;
      const int below = y == last ? last - 1 : y + 1;
      blurRow({in.row(channel, above), in.row(channel, y), in.row(channel, below)}, in.widthPixels,
              out.row(channel, y));
    }
  }
}

}  // namespace lumora
