#include "lut/interpolation.h"

#include <algorithm>
#include <cmath>

namespace lumora::lut {
namespace {

constexpr int kLevels = 256;

std::uint8_t toByte(float value) {
  return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0F, 1.0F) * 255));
}

// Between the two entries that the level lies between.
float onCurve(const Lut& lut, int channel, int level) {
  const float range = lut.highest[channel] - lut.lowest[channel];
  const float share = (static_cast<float>(level) / 255 - lut.lowest[channel]) / range;
  const float at = std::clamp(share, 0.0F, 1.0F) * static_cast<float>(lut.size - 1);
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
Node nodeOf(const Triple& entry) {
  constexpr float kScale = 255 << kNodeBits;
  Node node{};
  for (int channel = 0; channel < 3; ++channel) {
    node.channels[channel] =
        static_cast<std::int16_t>(std::lround(std::clamp(entry[channel], -1.0F, 2.0F) * kScale));
  }
  return node;
}

// (copy (16 - weight) + whole weight + 8) / 16, which rounds halves up.
void mix(std::uint8_t* row, const std::uint8_t* copy, std::size_t bytes, unsigned weight) {
  for (std::size_t i = 0; i < bytes; ++i) {
    row[i] = static_cast<std::uint8_t>((copy[i] * (16 - weight) + row[i] * weight + 8) >> 4);
  }
}

}  // namespace

Interpolation::Interpolation(const Lut& lut) {
  if (lut.is1d) {
    curves_ = curvesOf(lut);
    return;
  }
  nodes_.reserve(lut.entries.size());
  for (const Triple& entry : lut.entries) nodes_.push_back(nodeOf(entry));
  grid_.size = lut.size;
  for (int channel = 0; channel < 3; ++channel) {
    const float steps =
        static_cast<float>(lut.size - 1) / (lut.highest[channel] - lut.lowest[channel]);
    grid_.scale[channel] = steps / 255;
    grid_.offset[channel] = -lut.lowest[channel] * steps;
  }
}

void Interpolation::applyToRow(std::uint8_t* row, int pixels) const {
  if (curves_.empty()) {
    Grid grid = grid_;
    grid.nodes = nodes_.data();
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
    if (isMixed) mix(row, copy.data(), rowBytes, static_cast<unsigned>(8 + strength / 2));
  }
}

}  // namespace lumora::lut
