// The pyramid's steps and the masks written plainly, one sample at a time.
#pragma once

#include <vector>

#include "effects/pyramid/planar_image.h"
#include "support/test_picture.h"

namespace lumora::test {

// A planar image that owns its planes.
struct Planes {
  Planes(int widthPixels, int heightRows)
      : width(widthPixels),
        height(heightRows),
        bytes(static_cast<std::size_t>(kChannelCount * widthPixels * heightRows)) {}

  int width, height;
  Bytes bytes;

  PlanarImage view() { return {bytes.data(), width, height}; }
  std::uint8_t& at(int channel, int x, int y) {
    return bytes[static_cast<std::size_t>((channel * height + y) * width + x)];
  }
  int at(int channel, int x, int y) const {
    return bytes[static_cast<std::size_t>((channel * height + y) * width + x)];
  }
};

Planes noisePlanes(int width, int height, std::uint32_t seed);

Planes referenceReduce(const Picture& picture, int levels);
Planes referenceBlur3x3(const Planes& in);
// In single precision, the sums as they are written, with the coefficients of a row.
Planes referenceGaussian(const Planes& in, int row);
// Grows the image to level 1 of a picture, mixes it in by mask, or by weight without a mask.
void referenceGrow(const Planes& small, int levels, const Picture& picture, const Bytes& mask,
                   int weight);

Bytes referenceMask(int width, int height, const BlurParam& circle);
Bytes referenceMask(int width, int height, const TiltShiftParam& tilt);

// Blur and tilt-shift from the mask on, at a blur level of 1 or more.
void referenceFocus(const Picture& picture, const Bytes& mask, int blurLevel);

}  // namespace lumora::test
