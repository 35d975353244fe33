// The limit that everything is measured against: a pass that rewrites every byte of a picture where
// it lies, at the vector level in use.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/vector_level.h"

namespace lumora {

using InPlacePass = void (*)(std::uint8_t* bytes, std::size_t count);

// XORs every byte with 255.
LUMORA_PER_LEVEL(InPlacePass, kXorPass)
// Adds 1 to every byte, modulo 256: checks that the limit is one.
LUMORA_PER_LEVEL(InPlacePass, kAddPass)

}  // namespace lumora
