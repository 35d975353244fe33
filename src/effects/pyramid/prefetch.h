// Fetching of rows before they are needed. Level sources only.
//
// The kernels of the pyramid do so much for each byte, on so many rows at a time, that neither the
// processor's look-ahead nor its own prefetching reaches the next page of a picture in time. Each
// of them therefore fetches the row that comes next while it works on its own: that takes a third
// off the enlargement's time and two thirds off the reduction's.
#pragma once

#include <cstdint>

#include "hwy/highway.h"

namespace lumora::HWY_NAMESPACE {

inline constexpr int kCacheLineBytes = 64;

// Nothing happens when the bytes lie behind the end of the picture.
HWY_INLINE void prefetch(const std::uint8_t* bytes, int count) {
  for (int i = 0; i < count; i += kCacheLineBytes) __builtin_prefetch(bytes + i);
}

}  // namespace lumora::HWY_NAMESPACE
