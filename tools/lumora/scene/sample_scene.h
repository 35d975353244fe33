// A picture to try the looks on that needs no file: a lake on a summer afternoon.
#pragma once

#include <cstdint>
#include <vector>

#include "words.h"

namespace lumora::tool {

// Packed RGBA, opaque. The same bytes on every processor: only additions, multiplications,
// divisions and square roots of doubles.
std::vector<std::uint8_t> drawSampleScene(Size size);

}  // namespace lumora::tool
