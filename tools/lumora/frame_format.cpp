#include "frame_format.h"

#include <algorithm>
#include <array>

#include "errors.h"

namespace lumora::tool {
namespace {

constexpr std::array kFormats = {
    FrameFormat{"nv21", LUMORA_FORMAT_NV21, 1, true},
    FrameFormat{"nv12", LUMORA_FORMAT_NV12, 1, true},
    FrameFormat{"rgba", LUMORA_FORMAT_RGBA, 4, false},
};

// Weights in 1/256. The sum of the weights is 256 for luma, so it stays within 0..255.
std::uint8_t lumaOf(const std::uint8_t* pixel) {
  return static_cast<std::uint8_t>((77 * pixel[0] + 150 * pixel[1] + 29 * pixel[2] + 128) >> 8);
}

// The weights' sum is 0 and the result -128..128 around 128: a pure colour reaches 256.
std::uint8_t chromaOf(const int (&mean)[3], int red, int green, int blue) {
  const int chroma = (red * mean[0] + green * mean[1] + blue * mean[2] + 128) >> 8;
  return static_cast<std::uint8_t>(std::min(chroma + 128, 255));
}

}  // namespace

const FrameFormat& findFrameFormat(const std::string& name) {
  std::vector<std::string> names;
  for (const FrameFormat& format : kFormats) {
    if (lowerCase(name) == format.name) return format;
    names.emplace_back(format.name);
  }
  throw UsageError(text("'", name, "' is not one of nv21, nv12, rgba", didYouMean(name, names)));
}

Size frameSize(const FilterImage& rgba, const FrameFormat& format) {
  if (!format.hasChromaPlane) return {rgba.width, rgba.height};
  return {rgba.width & ~1u, rgba.height & ~1u};
}

std::vector<std::uint8_t> frameOf(const FilterImage& rgba, const FrameFormat& format) {
  const std::size_t rowBytes = std::size_t{4} * rgba.width;
  if (!format.hasChromaPlane) return {rgba.picData, rgba.picData + rowBytes * rgba.height};
  const Size size = frameSize(rgba, format);
  const std::size_t width = size.width;
  std::vector<std::uint8_t> frame(width * size.height * 3 / 2);
  std::uint8_t* chroma = &frame[width * size.height];
  const int first = format.format == LUMORA_FORMAT_NV21 ? 1 : 0;  // of Cb, Cr
  for (std::size_t y = 0; y < size.height; y += 2) {
    for (std::size_t x = 0; x < width; x += 2, chroma += 2) {
      int sums[3] = {};
      for (const std::size_t row : {y, y + 1}) {
        for (const std::size_t column : {x, x + 1}) {
          const std::uint8_t* const pixel = rgba.picData + row * rowBytes + 4 * column;
          frame[row * width + column] = lumaOf(pixel);
          for (int channel = 0; channel < 3; ++channel) sums[channel] += pixel[channel];
        }
      }
      const int mean[3] = {sums[0] / 4, sums[1] / 4, sums[2] / 4};
      chroma[first] = chromaOf(mean, -43, -85, 128);
      chroma[1 - first] = chromaOf(mean, 128, -107, -21);
    }
  }
  return frame;
}

}  // namespace lumora::tool
