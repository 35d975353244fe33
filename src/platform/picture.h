// A picture as the steps below the interface see it: checked, with 64-bit sizes where they matter.
#pragma once

#include <cstddef>
#include <cstdint>

#include "lumora/filters.h"

namespace lumora {

enum class PixelFormat : std::uint32_t {
  kRgba = LUMORA_FORMAT_RGBA,
  kNv21 = LUMORA_FORMAT_NV21,
  kNv12 = LUMORA_FORMAT_NV12,
};

// Whether a step may start its four workers or must stay on the calling thread.
enum class Threads { kFour, kCaller };

struct Picture {
  PixelFormat format;
  std::uint8_t* data;
  int widthPixels;
  int heightRows;
  std::ptrdiff_t strideBytes;

  bool isRgba() const { return format == PixelFormat::kRgba; }
  // Of all planes, with what lies between rows.
  std::uint64_t bytes() const {
    const auto plane = static_cast<std::uint64_t>(strideBytes) * heightRows;
    return isRgba() ? plane : plane * 3 / 2;
  }
  std::uint8_t* row(std::ptrdiff_t y) const { return data + y * strideBytes; }
  // NV pictures: the plane of chroma pairs, row m belongs to the luma rows 2m and 2m + 1.
  std::uint8_t* chroma() const { return row(heightRows); }
};

}  // namespace lumora
