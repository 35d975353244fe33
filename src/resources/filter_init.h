// Builds handles from the resource files.
#pragma once

#include <cstdint>

#include "lumora/filters.h"
#include "platform/status.h"

namespace lumora {

Status FilterInitSized(std::uint32_t mode, std::uint32_t width, std::uint32_t height,
                       std::uint32_t direction, FilterHandle** handle,
                       const FilterAllocator& allocator, const char* resourceDir);

Status FilterInitUnsized(std::uint32_t mode, std::uint32_t direction, FilterHandle** handle,
                         const FilterAllocator& allocator, const char* resourceDir);

}  // namespace lumora
