// Tables of colours, as .cube files and Hald pictures hold them.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

namespace lumora::lut {

using Triple = std::array<float, 3>;  // red, green, blue

inline constexpr int kSmallestSize = 2;
inline constexpr int kGreatest3dSize = 256;
inline constexpr int kGreatest1dSize = 65536;

// Colours are 0..1, results may go beyond.
struct Lut {
  // A curve per channel of `size` entries; otherwise size^3 entries, red running fastest.
  bool is1d = false;
  int size = 0;
  // The colours of the first and the last entry.
  Triple lowest{0, 0, 0};
  Triple highest{1, 1, 1};
  std::vector<Triple> entries;
};

constexpr std::size_t entryCount(bool is1d, int size) {
  const auto n = static_cast<std::size_t>(size);
  return is1d ? n : n * n * n;
}

}  // namespace lumora::lut
