// Colour fix on rows of pixels, a multiple of eight at a time.
#pragma once

#include <cstdint>

#include "platform/vector_level.h"

namespace lumora {

// What becomes of a pixel by its hue's distance from the reference hue.
struct FadeRule {
  std::uint8_t hue;
  std::uint8_t tolerance;  // up to this distance a pixel stays; from twice this on it is grey
  std::uint16_t step;      // of the weight of grey per distance in between: 8192 / tolerance
};

struct ColourFixKernels {
  // maskRow: null, or one sample per pixel; where it is 0 the pixel becomes grey.
  void (*fix)(std::uint8_t* row, int pixels, const std::uint8_t* maskRow, const FadeRule& rule);
  void (*grey)(std::uint8_t* row, int pixels);
};

LUMORA_PER_LEVEL(ColourFixKernels, kColourFix)

}  // namespace lumora
