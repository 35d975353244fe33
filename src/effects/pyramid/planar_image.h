// Small images of three planes, and the levels of a picture that they hold.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lumora {

// Red, green and blue; or luma, first and second chroma byte.
inline constexpr int kChannelCount = 3;

// Three planes of widthPixels x heightRows bytes, back to back without gaps.
struct PlanarImage {
  std::uint8_t* data;
  int widthPixels;
  int heightRows;

  std::ptrdiff_t planeBytes() const { return std::ptrdiff_t{widthPixels} * heightRows; }
  std::ptrdiff_t bytes() const { return kChannelCount * planeBytes(); }
  std::uint8_t* plane(int channel) const { return data + channel * planeBytes(); }
  std::uint8_t* row(int channel, int y) const {
    return plane(channel) + std::ptrdiff_t{y} * widthPixels;
  }
};

// Level 0 is the picture; every level halves the one before, rounded up. The chroma planes of an NV
// picture have level 1 as their full size, so all three planes of a level are of one size.
constexpr int levelExtent(int pictureExtent, int level) {
  return (pictureExtent + (1 << level) - 1) >> level;
}

// The deepest level anything asks for: 20000 pixels reduced to 40.
inline constexpr int kMaxLevels = 9;

}  // namespace lumora
