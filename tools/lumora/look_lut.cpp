#include "look_lut.h"

#include <algorithm>

#include "filter.h"

namespace lumora::tool {
namespace {

constexpr unsigned kSide = 4096;  // of a picture with all colours
constexpr int kLevels = 256;

std::vector<std::uint8_t> allColours() {
  std::vector<std::uint8_t> pixels(std::size_t{4} * kSide * kSide);
  for (std::size_t i = 0; i < pixels.size() / 4; ++i) {
    for (int channel = 0; channel < 3; ++channel) {
      pixels[4 * i + channel] = static_cast<std::uint8_t>(i >> (8 * channel));
    }
    pixels[4 * i + 3] = 255;
  }
  return pixels;
}

}  // namespace

const char* reasonAgainstLut(const Mode& mode) {
  if (mode.texture) return "its texture differs from place to place";
  if (mode.strength == StrengthUse::kOwn) return "it takes in what surrounds a pixel";
  if (mode.reads(kColour)) return "it cuts between hues more sharply than a table can";
  if (mode.settings != 0) return "it works on a part of the picture";
  return nullptr;
}

LookColours::LookColours(const ResourceSettings& resources, const LookSettings& look)
    : pixels_(allColours()) {
  const FilterImage picture{LUMORA_FORMAT_RGBA, pixels_.data(), kSide, kSide, 4 * kSide};
  Filter(resources).apply(look, picture);
}

lut::Triple LookColours::between(const lut::Triple& levels) const {
  int low[3];
  float share[3];
  for (int channel = 0; channel < 3; ++channel) {
    low[channel] = std::min(static_cast<int>(levels[channel]), kLevels - 2);
    share[channel] = levels[channel] - static_cast<float>(low[channel]);
  }
  lut::Triple sum{};
  for (int corner = 0; corner < 8; ++corner) {
    std::size_t at = 0;
    float weight = 1;
    for (int channel = 0; channel < 3; ++channel) {
      const int step = corner >> channel & 1;
      at += static_cast<std::size_t>(low[channel] + step) << (8 * channel);
      weight *= step != 0 ? share[channel] : 1 - share[channel];
    }
    for (int channel = 0; channel < 3; ++channel) {
      sum[channel] += weight * pixels_[4 * at + channel];
    }
  }
  return sum;
}

lut::Lut LookColours::table(int size) const {
  lut::Lut lut;
  lut.size = size;
  lut.entries.reserve(lut::entryCount(false, size));
  const auto level = [size](int i) {
    return static_cast<float>(i) * 255 / static_cast<float>(size - 1);
  };
  for (int blue = 0; blue < size; ++blue) {
    for (int green = 0; green < size; ++green) {
      for (int red = 0; red < size; ++red) {
        lut::Triple entry = between({level(red), level(green), level(blue)});
        for (float& value : entry) value /= 255;
        lut.entries.push_back(entry);
      }
    }
  }
  return lut;
}

}  // namespace lumora::tool
