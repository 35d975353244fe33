// Mosaic: pixelates one rectangle of a picture.
#pragma once

#include <cstdint>

#include "platform/picture.h"
#include "platform/status.h"

namespace lumora {

// A rectangle of the picture in pixels; right and bottom are exclusive.
struct MosaicRect {
  std::int32_t left;
  std::int32_t top;
  std::int32_t right;
  std::int32_t bottom;
};

// Fills every mosaicSize x mosaicSize block of the rectangle, from its top left corner on, with the
// block's mean colour; blocks at the right and bottom take what the sides leave. The rectangle lies
// inside the picture, its position and sides are even, the sides 8..2000, and mosaicSize is 8..the
// shorter side. Alpha is not averaged: the first row of a block keeps its own, the rows below take
// that of the first.
// Returns kOk; kNoMemory or kThreadFailed with the picture untouched.
Status FilterMosaic(const Picture& picture, MosaicRect rect, int mosaicSize,
                    const FilterAllocator& allocator, Threads threads);

}  // namespace lumora
