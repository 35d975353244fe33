// Makes filter handles from the resource files.
#pragma once

#include <cstdint>

#include "lumora/filters.h"
#include "platform/status.h"

namespace lumora {

// Makes a handle whose textures are prepared for pictures of width x height (88 to 20000 each).
// eMode: the mode the handle is for, of which the low 8 bits count; 0 for any.
// resourceDir: prefix of the two resource files, or null for the built-in directory.
// *handle: untouched while the pack is being read; null when there is no memory for the handle's
// block; from then on the handle, which the host releases whatever the status.
// Returns kBadResource for the resource files, kNoMemory, kBadArgument for a direction above 3, and
// kThreadFailed.
Status FilterInitSized(std::uint32_t eMode, std::uint32_t width, std::uint32_t height,
                       std::uint32_t eDirection, FilterHandle** handle,
                       const FilterAllocator& allocator, const char* resourceDir);

// Makes a handle that holds the textures as the pack stores them.
Status FilterInitUnsized(std::uint32_t eMode, std::uint32_t eDirection, FilterHandle** handle,
                         const FilterAllocator& allocator, const char* resourceDir);

}  // namespace lumora
