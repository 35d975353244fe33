// Tetrahedral interpolation: every cell of the table is cut into six tetrahedra along its grey
// diagonal, and a colour is mixed of the corners of the one that it lies in.
#pragma once

#include <cstdint>

#include "platform/vector_level.h"

namespace lumora::lut {

// Levels of red, green and blue in 1/64, -256..511; the fourth is 0.
struct alignas(8) Node {
  std::int16_t channels[4];
};
inline constexpr int kNodeBits = 6;

struct Grid {
  const Node* nodes;  // red runs fastest
  int size;           // nodes a side
  // The place of a level v in the grid: v x scale + offset, held within the grid.
  float scale[3];
  float offset[3];
};

}  // namespace lumora::lut

namespace lumora {

// Rewrites packed RGBA pixels; alpha stays.
using Tetrahedra = void (*)(const lut::Grid& grid, std::uint8_t* pixels, int count);
LUMORA_PER_LEVEL(Tetrahedra, kTetrahedra)

}  // namespace lumora
