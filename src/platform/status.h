// Status codes as they travel inside the library.
#pragma once

#include <cstdint>

#include "lumora/filters.h"

namespace lumora {

enum class [[nodiscard]] Status : std::uint32_t{
    kOk = LUMORA_OK,
    kBadArgument = LUMORA_BAD_ARGUMENT,
    kBadState = LUMORA_BAD_STATE,
    kNoMemory = LUMORA_BAD_STATE,
    kBadResource = LUMORA_BAD_RESOURCE,
    kThreadFailed = LUMORA_THREAD_FAILED,
};

}  // namespace lumora
