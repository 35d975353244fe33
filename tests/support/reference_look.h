// The looks' arithmetic written plainly, one pixel at a time.
#pragma once

#include <functional>

#include "looks/look.h"
#include "support/test_picture.h"

namespace lumora::test {

struct Colour {
  int r, g, b;
};

inline int clampByte(int v) { return v < 0 ? 0 : v > 255 ? 255 : v; }
inline int greyOf(Colour c) { return (19 * c.r + 38 * c.g + 7 * c.b + 32) >> 6; }

// 17 knots at 0, 16, ..., 256; the step between two is taken modulo 256.
inline int curveLookup(const Knots& knots, int x) {
  const int i = x >> 4, f = x & 15;
  const int step = (knots.at[i + 1] - knots.at[i]) & 255;
  return clampByte(knots.at[i] + (((step * f + 8) >> 4) & 255));
}

inline Knots rampCurve(const Knots& base, const Knots& strong, int ratio) {
  if (ratio <= 16) return base;
  Knots out{};
  for (int j = 0; j < kKnotCount; ++j) {
    out.at[j] = static_cast<std::uint8_t>(
        ((32 - ratio) * base.at[j] + (ratio - 16) * strong.at[j] + 8) >> 4);
  }
  return out;
}

// One pixel before the look: its colour, its luma (GrayFromRGB, or as read from NV pictures) and
// the up to three texture bytes beside it.
struct ReferencePixel {
  Colour colour;
  int luma;
  const std::uint8_t* texel;
  bool isNv;
};
using PixelFunction = std::function<Colour(const ReferencePixel&)>;

struct ReferenceConversion {
  int neutralIn = 127;
  int neutralOut = 127;
  // Chroma from half-adds of the new colours, the luma's pairs taken by column.
  bool halfAdds = false;
};

// Applies the function to every pixel of the picture in place, with the conversions of NV pictures.
// texture is packed at the picture's width, texelBytes (0, 1 or 3) a pixel.
void referenceRun(const Picture& picture, const PixelFunction& function,
                  const ReferenceConversion& conversion = {}, const std::uint8_t* texture = nullptr,
                  int texelBytes = 0);

// Only the luma of NV pictures changes, their chroma becomes 127; RGBA pixels become grey.
void referenceMonochrome(const Picture& picture, const std::function<int(int)>& tone);

}  // namespace lumora::test
