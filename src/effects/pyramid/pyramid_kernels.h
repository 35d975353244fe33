// The inner loops of the pyramid, for the level in use.
//
// Rows they write have kRowPadding bytes of room behind them, which are filled with anything.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/vector_level.h"

namespace lumora {

struct PyramidKernels {
  // Every second pixel of a row, the odd ones, taken apart; an odd width's last pixel comes last.
  // ahead is the distance in bytes to the row that comes next, which is fetched meanwhile; whether
  // it is there does not matter.
  void (*subsampleRgba)(const std::uint8_t* pixels, std::ptrdiff_t ahead, int widthPixels,
                        std::uint8_t* red, std::uint8_t* green, std::uint8_t* blue);
  // The first and the second byte of each pair.
  void (*splitPairs)(const std::uint8_t* pairs, std::ptrdiff_t ahead, int count,
                     std::uint8_t* first, std::uint8_t* second);
  // Rounded means of the rounded means of the two pairs of each 2 x 2 block.
  void (*halveRows)(const std::uint8_t* top, const std::uint8_t* bottom, std::ptrdiff_t ahead,
                    int count, std::uint8_t* out);
  // Doubles a row: every sample becomes two, each 3/4 of the nearer and 1/4 of the farther sample
  // in both directions. near and far are readable one sample beyond either end and up to
  // kRowPadding behind; 2 x count samples come out.
  void (*doubleRow)(const std::uint8_t* near, const std::uint8_t* far, int count,
                    std::uint8_t* out);
};

LUMORA_PER_LEVEL(PyramidKernels, kPyramid)

}  // namespace lumora
