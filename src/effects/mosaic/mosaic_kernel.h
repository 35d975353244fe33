// The mosaic's inner loop: sums of columns.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/vector_level.h"

namespace lumora {

// 257 x 255 is the largest 16-bit value.
inline constexpr int kMostSummedRows = 257;

// sums[i] = sum of byte i over 1..kMostSummedRows rows, for every byte of a row.
using ColumnSums = void (*)(const std::uint8_t* firstRow, std::ptrdiff_t strideBytes, int rows,
                            int rowBytes, std::uint16_t* sums);

LUMORA_PER_LEVEL(ColumnSums, kColumnSums)

}  // namespace lumora
