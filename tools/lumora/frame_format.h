// Pixels as cameras store them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "words.h"

namespace lumora::tool {

struct FrameFormat {
  const char* name;
  std::uint32_t format;    // LUMORA_FORMAT_...
  unsigned bytesPerPixel;  // of the first plane
  bool hasChromaPlane;     // half as large again
};

// Throws a UsageError that names the nearest.
const FrameFormat& findFrameFormat(const std::string& name);

// Packed RGBA as a frame of packed rows, with luma and chroma as the looks take them: full range,
// BT.601. nv21 and nv12 leave out an odd last column or row; `size` becomes the frame's.
std::vector<std::uint8_t> frameOf(const std::vector<std::uint8_t>& rgba, const FrameFormat& format,
                                  Size& size);

}  // namespace lumora::tool
