// Memory for the pixels of pictures, kept from one to the next: fresh pages cost as much as a look.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lumora::tool {

// At least `bytes` long, aligned to pages; null where memory is short.
std::uint8_t* takePixelBlock(std::size_t bytes);
// For the next picture.
void givePixelBlock(std::uint8_t* block);

// Gives the memory of what lies before `end` back to the system; it then reads as zeros.
void dropPixelsBefore(std::uint8_t* block, const std::uint8_t* end);

// For a run of several pictures, before its threads start: what the image library has allocated for
// one is not returned to the system, but there for the next.
void keepFreedMemory();

}  // namespace lumora::tool
