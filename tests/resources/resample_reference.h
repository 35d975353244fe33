// The two rules of resampling, written plainly.
#pragma once

#include "support/test_picture.h"

namespace lumora::test {

struct Sizes {
  int srcWidth, srcHeight, dstWidth, dstHeight;
};

// The source position that a destination position shows, for counts of pixels along one side.
using PositionRule = int (*)(int position, int srcCount, int dstCount);

// In steps of 1/1024 source pixel.
inline int fixedPointPosition(int position, int srcCount, int dstCount) {
  const float step = static_cast<float>(srcCount * 1024) / static_cast<float>(dstCount);
  return position * static_cast<int>(step) >> 10;
}

inline int floatingPosition(int position, int srcCount, int dstCount) {
  const float ratio = static_cast<float>(srcCount) / static_cast<float>(dstCount);
  return static_cast<int>(static_cast<float>(position) * ratio);
}

inline Bytes resampled(const std::uint8_t* src, const Sizes& s, int bytesPerPixel,
                       PositionRule rule) {
  Bytes dst;
  for (int y = 0; y < s.dstHeight; ++y) {
    const int row = rule(y, s.srcHeight, s.dstHeight) * s.srcWidth;
    for (int x = 0; x < s.dstWidth; ++x) {
      const std::uint8_t* pixel = src + (row + rule(x, s.srcWidth, s.dstWidth)) * bytesPerPixel;
      dst.insert(dst.end(), pixel, pixel + bytesPerPixel);
    }
  }
  return dst;
}

}  // namespace lumora::test
