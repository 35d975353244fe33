// Tetrahedral interpolation: every cell of the table is cut into six tetrahedra along its grey
// diagonal, and a colour is mixed of the corners of the one that it lies in.
#pragma once

#include <cstdint>

#include "platform/vector_level.h"

namespace lumora::lut {

// A node and the one at the other end of its cell's grey diagonal. The way from end to end leads
// over two more corners: one is the near end of the diagonal a step on, the other the far end of
// the diagonal a step back. So three loads fetch a tetrahedron, in pairs as products are added.
struct alignas(16) Diagonal {
  // By red, green and blue: levels of -256..511 in 1/64 and half a level, with which cutting off
  // rounds. The fourth is 0.
  std::int16_t ends[4][2];
};
inline constexpr int kNodeBits = 6;

struct Grid {
  // By node, red running fastest. The first node's is preceded by size^2 more, which are stepped
  // back to.
  const Diagonal* diagonals;
  int size;  // nodes a side
  // Of the 256 levels of red, of green and of blue, from the first node, 0, to the last, 65535.
  // Null: 257 times the level.
  const std::uint16_t* places;
};

}  // namespace lumora::lut

namespace lumora {

// Rewrites packed RGBA pixels; alpha stays. Every level gives the same bytes.
using Tetrahedra = void (*)(const lut::Grid& grid, std::uint8_t* pixels, int count);
LUMORA_PER_LEVEL(Tetrahedra, kTetrahedra)

}  // namespace lumora
