// What lies beside the picture at each pixel: nothing, a grey texture or a colour texture. Level
// sources only.
#pragma once

#include "pixels/interleave.h"

namespace lumora::HWY_NAMESPACE {

struct NoTexture {
  static constexpr int kBytesPerPixel = 0;
  struct Texels {};
  static HWY_INLINE Texels load(const std::uint8_t*) { return {}; }
  static HWY_INLINE Texels loadInRgbaOrder(const std::uint8_t*) { return {}; }
};

struct GreyTexture {
  static constexpr int kBytesPerPixel = 1;
  using Texels = V8;
  static HWY_INLINE Texels load(const std::uint8_t* at) { return hn::LoadU(d8, at); }
  static HWY_INLINE Texels loadInRgbaOrder(const std::uint8_t* at) {
    return HWY_NAMESPACE::loadInRgbaOrder(at);
  }
};

struct RgbTexture {
  static constexpr int kBytesPerPixel = 3;
  using Texels = Rgb;
  static HWY_INLINE Texels load(const std::uint8_t* at) { return loadRgb(at); }
  static HWY_INLINE Texels loadInRgbaOrder(const std::uint8_t* at) {
    return loadRgbInRgbaOrder(at);
  }
};

// A vector of pixels as a look's step sees them: lane i of everything belongs to the same pixel.
template <class Texture>
struct Pixels {
  Rgb colour;
  V8 luma;  // GrayFromRGB of RGBA pictures, the luma as read of NV pictures
  typename Texture::Texels texels;
};

}  // namespace lumora::HWY_NAMESPACE
