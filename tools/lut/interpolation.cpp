#include "lut/interpolation.h"

#include <algorithm>
#include <cmath>

#include "pixels/blend_kernel.h"

namespace lumora::lut {
namespace {

constexpr int kLevels = 256;

std::uint8_t toByte(float value) {
  return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0F, 1.0F) * 255));
}

// Of the way from the first entry to the last.
float shareOf(const Lut& lut, int channel, int level) {
  const float range = lut.highest[channel] - lut.lowest[channel];
  const float share = (static_cast<float>(level) / 255 - lut.lowest[channel]) / range;
  return std::clamp(share, 0.0F, 1.0F);
}

// Between the two entries that the level lies between.
float onCurve(const Lut& lut, int channel, int level) {
  const float at = shareOf(lut, channel, level) * static_cast<float>(lut.size - 1);
  const int below = std::min(static_cast<int>(at), lut.size - 2);
  const float part = at - static_cast<float>(below);
  return lut.entries[below][channel] * (1 - part) + lut.entries[below + 1][channel] * part;
}

std::vector<std::uint8_t> curvesOf(const Lut& lut) {
  std::vector<std::uint8_t> curves;
  for (int channel = 0; channel < 3; ++channel) {
    for (int level = 0; level < kLevels; ++level) {
      curves.push_back(toByte(onCurve(lut, channel, level)));
    }
  }
  return curves;
}

// Far beyond what can be seen results are cut off: a node holds -256..511 levels.
std::int16_t levelOf(float value) {
  constexpr float kScale = 255 << kNodeBits;
  constexpr long kHalf = 1 << (kNodeBits - 1);
  return static_cast<std::int16_t>(std::lround(std::clamp(value, -1.0F, 2.0F) * kScale) + kHalf);
}

// With size^2 of them in front of the first node's.
std::vector<Diagonal> diagonalsOf(const Lut& lut) {
  const auto size = static_cast<std::size_t>(lut.size);
  const std::size_t front = size * size, across = 1 + size + size * size;
  std::vector<Diagonal> diagonals(front + lut.entries.size());
  for (std::size_t i = 0; i < lut.entries.size(); ++i) {
    for (int channel = 0; channel < 3; ++channel) {
      const std::int16_t level = levelOf(lut.entries[i][channel]);
      diagonals[front + i].ends[channel][0] = level;
      if (front + i >= across) diagonals[front + i - across].ends[channel][1] = level;
    }
  }
  return diagonals;
}

std::vector<std::uint16_t> placesOf(const Lut& lut) {
  std::vector<std::uint16_t> places;
  for (int channel = 0; channel < 3; ++channel) {
    for (int level = 0; level < kLevels; ++level) {
      const float place = shareOf(lut, channel, level) * 65535;
      places.push_back(static_cast<std::uint16_t>(std::lround(place)));
    }
  }
  return places;
}

}  // namespace

Interpolation::Interpolation(const Lut& lut) {
  if (lut.is1d) {
    curves_ = curvesOf(lut);
    return;
  }
  size_ = lut.size;
  diagonals_ = diagonalsOf(lut);
  if (lut.lowest != Triple{0, 0, 0} || lut.highest != Triple{1, 1, 1}) places_ = placesOf(lut);
}

void Interpolation::applyToRow(std::uint8_t* row, int pixels) const {
  if (curves_.empty()) {
    const auto front = static_cast<std::size_t>(size_) * static_cast<std::size_t>(size_);
    const Grid grid{diagonals_.data() + front, size_, places_.empty() ? nullptr : places_.data()};
    return kTetrahedra()(grid, row, pixels);
  }
  for (std::uint8_t* pixel = row; pixel < row + std::ptrdiff_t{4} * pixels; pixel += 4) {
    for (int channel = 0; channel < 3; ++channel) {
      pixel[channel] = curves_[static_cast<std::size_t>(kLevels * channel + pixel[channel])];
    }
  }
}

void Interpolation::apply(std::uint8_t* pixels, int widthPixels, int rows,
                          std::ptrdiff_t strideBytes, int strength) const {
  const bool isMixed = strength < 16;
  const auto rowBytes = static_cast<std::size_t>(4 * widthPixels);
  std::vector<std::uint8_t> copy;
  for (int y = 0; y < rows; ++y) {
    std::uint8_t* const row = pixels + y * strideBytes;
    if (isMixed) copy.assign(row, row + rowBytes);
    applyToRow(row, widthPixels);
    if (isMixed) kBlend()(copy.data(), row, rowBytes, 8 + strength / 2);
  }
}

}  // namespace lumora::lut
