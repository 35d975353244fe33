// The vector part of resampling: one row, gathered in blocks of 16 bytes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/vector_level.h"

namespace lumora {

inline constexpr std::size_t kGatherBlockBytes = 16;

// Where the bytes of a destination row come from, for rows that are not narrower than a block and
// whose blocks each draw on at most 16 neighbouring source bytes. Block k makes the destination
// bytes from 16 k on, the last block the last 16 of the row: byte i of a block is source byte
// base[k] + pick[16 k + i].
struct BlockGather {
  const std::uint16_t* base;
  const std::uint8_t* pick;  // 0..15
  std::size_t blocks;
  std::size_t bytes;  // of the destination row
};

struct ResampleKernel {
  void (*gatherRow)(const BlockGather& gather, const std::uint8_t* src, std::uint8_t* dst);
};
LUMORA_PER_LEVEL(ResampleKernel, resampleKernel)

}  // namespace lumora
