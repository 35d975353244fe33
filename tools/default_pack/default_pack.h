// The texture pack that the library comes with.
#pragma once

#include <cstdint>

namespace lumora {

// Draws a whole pack of kPackBytes bytes. Every build draws the same bytes.
void drawDefaultPack(std::uint8_t* bytes);

}  // namespace lumora
