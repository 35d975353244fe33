// Working memory of a walk through the levels of a picture, row by row.
//
// Both directions need few rows at a time: halving takes two rows of the finer level, doubling two
// of the coarser one. So each level keeps its last two rows, and between the picture and its small
// image no level is ever stored as a whole.
#pragma once

#include "effects/pyramid/planar_image.h"

namespace lumora {

// Room on both sides of a kept row: kernels load and store whole vectors and look one sample beyond
// either end.
inline constexpr int kRowPadding = 64;

class LevelRows {
 public:
  // Memory for the levels 1 to `levels`.
  static constexpr std::ptrdiff_t bytes(int pictureWidth, int levels) {
    std::ptrdiff_t sum = 0;
    for (int level = 1; level <= levels; ++level) sum += windowBytes(pictureWidth, level);
    return sum;
  }

  LevelRows(int pictureWidth, int levels, std::uint8_t* memory) {
    for (int level = 1; level <= levels; ++level) {
      windows_[level] = {memory + kRowPadding, rowPitch(pictureWidth, level), {kNone, kNone}};
      memory += windowBytes(pictureWidth, level);
    }
  }

  // Row y shares its place with every second row: neighbours are kept together.
  std::uint8_t* row(int level, int channel, int y) const {
    const Window& window = windows_[level];
    return window.rows + ((y & 1) * kChannelCount + channel) * window.pitch;
  }
  bool holds(int level, int y) const { return windows_[level].held[y & 1] == y; }
  void setHeld(int level, int y) { windows_[level].held[y & 1] = y; }

 private:
  static constexpr int kNone = -1;
  struct Window {
    std::uint8_t* rows;
    std::ptrdiff_t pitch;
    int held[2];
  };

  static constexpr std::ptrdiff_t rowPitch(int pictureWidth, int level) {
    return (levelExtent(pictureWidth, level) + kRowPadding - 1) / kRowPadding * kRowPadding +
           2 * kRowPadding;
  }
  static constexpr std::ptrdiff_t windowBytes(int pictureWidth, int level) {
    return 2 * kChannelCount * rowPitch(pictureWidth, level);
  }

  Window windows_[kMaxLevels + 1];
};

}  // namespace lumora
