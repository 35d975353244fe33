// Mosaic: pixelates one rectangle of a picture.
#pragma once

#include <cstdint>

#include "platform/picture.h"

namespace lumora {

// A rectangle of the picture in pixels; right and bottom are exclusive.
struct MosaicRect {
  std::int32_t left;
  std::int32_t top;
  std::int32_t right;
  std::int32_t bottom;
};

// Mixes into every mosaicSize x mosaicSize block of the rectangle, from its top left corner on, the
// block's mean colour, `weight` sixteenths of it, 1..16; blocks at the right and bottom take what
// the sides leave. The rectangle lies inside the picture, its position and sides are even, the
// sides 8..2000, and mosaicSize is 8..the shorter side. Alpha is not averaged: the first row of a
// block keeps its own, the rows below take that of the first. It cannot fail: where memory is
// refused or a worker does not start, that is logged, and the calling thread makes what is missing.
void FilterMosaic(const Picture& picture, MosaicRect rect, int mosaicSize, int weight,
                  const FilterAllocator& allocator, Threads threads);

}  // namespace lumora
