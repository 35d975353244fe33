// Mosaic: pixelates one rectangle of a picture.
#pragma once

#include <cstdint>

namespace lumora {

// A rectangle of the picture in pixels; right and bottom are exclusive.
struct MosaicRect {
  std::int32_t left;
  std::int32_t top;
  std::int32_t right;
  std::int32_t bottom;
};

}  // namespace lumora
