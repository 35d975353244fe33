// Mixing of two runs of bytes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/vector_level.h"

namespace lumora {

// Mixes `bytes` bytes of a copy into the picture, in place: each becomes
// (copy (16 - weight) + picture weight + 8) >> 4, for weights 0..16.
using BlendKernel = void (*)(const std::uint8_t* copy, std::uint8_t* picture, std::size_t bytes,
                             int weight);

LUMORA_PER_LEVEL(BlendKernel, kBlend)

}  // namespace lumora
