// The table of colours that pictures are sent through.
#pragma once

#include <cmath>

#include "lut/lut.h"

namespace lumora::bench {

// Bends every channel and mixes a little of the others in.
inline lut::Lut warmTable(int entries) {
  lut::Lut lut;
  lut.size = entries;
  const auto n = static_cast<std::size_t>(entries);
  const auto level = [entries](std::size_t i) {
    return static_cast<float>(i) / static_cast<float>(entries - 1);
  };
  for (std::size_t i = 0; i < lut::entryCount(false, entries); ++i) {
    const float r = level(i % n), g = level(i / n % n), b = level(i / (n * n));
    lut.entries.push_back({std::pow(r, 0.8F), 0.9F * g + 0.1F * r, 0.2F * g + 0.7F * b * b});
  }
  return lut;
}

}  // namespace lumora::bench
