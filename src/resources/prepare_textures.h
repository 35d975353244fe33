// Stretches the pack's textures to a picture's size, once per handle.
#pragma once

#include <cstdint>

#include "lumora/filters.h"
#include "platform/status.h"
#include "resources/resample.h"

namespace lumora {

// Fills the planes and small textures that the mode needs (those of every texture look for 0, none
// for a mode that uses no texture) from the bytes of a pack. The handle's header is already that of
// width x height; direction, 0 to 3, selects the LIANGHONG texture. Returns kThreadFailed when a
// worker could not be started; the textures are filled nevertheless.
Status PrepareTextures(std::uint8_t mode, std::int32_t width, std::int32_t height,
                       std::uint32_t direction, const std::uint8_t* pack, FilterHandle* handle);

}  // namespace lumora
