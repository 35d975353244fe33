// The strength blend: mixes the filtered picture with its untouched copy in sixteenths.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/status.h"

namespace lumora {

inline constexpr int kFullWeight = 16;

// copy and picture hold `bytes` bytes each, at least 8; weight 0..16 is the picture's share. Every
// byte is mixed alike, the stride padding included.
void FilterBlend(const std::uint8_t* copy, std::uint8_t* picture, std::size_t bytes, int weight);

// The same on four workers; kThreadFailed leaves the stripes of the missing workers filtered.
Status FilterBlend_multiThread(const std::uint8_t* copy, std::uint8_t* picture, std::size_t bytes,
                               int weight);

}  // namespace lumora
