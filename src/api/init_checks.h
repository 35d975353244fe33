// The checks of an initialisation, made before anything is allocated.
#pragma once

#include "lumora/filters.h"
#include "platform/status.h"

namespace lumora {

// What both initialisation records say, by reference where the call writes back.
struct InitRequest {
  std::uint32_t mode;
  std::uint32_t direction;
  std::uint32_t width;
  std::uint32_t height;
  FilterAllocator*& allocator;
  FilterAllocator& defaultAllocator;
  const char* resourceDir;  // null: the built-in directory
};

// In their order; the first failure wins. Installs the default allocator where the host has none.
Status checkInitRequest(const InitRequest& request);

// malloc and free.
FilterAllocator makeDefaultAllocator();

}  // namespace lumora
