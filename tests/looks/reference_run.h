// Looks run plainly, one pixel at a time, with the conversions of NV pictures.
#pragma once

#include <functional>

#include "support/test_picture.h"

namespace lumora::test {

struct Colour {
  int r, g, b;
};

inline int clampByte(int v) { return v < 0 ? 0 : v > 255 ? 255 : v; }
inline int greyOf(Colour c) { return (19 * c.r + 38 * c.g + 7 * c.b + 32) >> 6; }

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

// Applies the function to every pixel of the picture in place. texture is packed at the picture's
// width, texelBytes (0, 1 or 3) a pixel.
void referenceRun(const Picture& picture, const PixelFunction& function,
                  const ReferenceConversion& conversion, const std::uint8_t* texture,
                  int texelBytes);

}  // namespace lumora::test
