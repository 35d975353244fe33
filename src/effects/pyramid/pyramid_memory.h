// How an effect divides its block of three bytes a pixel of the picture.
#pragma once

#include <cassert>

#include "effects/pyramid/level_rows.h"
#include "platform/picture.h"
#include "platform/stripe_runner.h"

namespace lumora {

// The smoothed small image, the reduced one it is made from, and the rows of the levels between the
// picture and them, for each of four workers. All three fit from a shorter side of 65 pixels on.
struct PyramidMemory {
  PlanarImage smoothed;
  PlanarImage reduced;
  std::uint8_t* rows;

  PyramidMemory(const Picture& picture, int levels, std::uint8_t* block)
      : smoothed{block, levelExtent(picture.widthPixels, levels),
                 levelExtent(picture.heightRows, levels)},
        reduced{block + smoothed.bytes(), smoothed.widthPixels, smoothed.heightRows},
        rows(reduced.data + reduced.bytes()) {
    assert(2 * smoothed.bytes() + kStripeCount * LevelRows::bytes(picture.widthPixels, levels) <=
           std::ptrdiff_t{3} * picture.widthPixels * picture.heightRows);
  }
};

}  // namespace lumora
