// Pixels as cameras store them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "lumora/filters.h"
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

// The size of the frame that frameOf() makes of a picture: nv21 and nv12 leave out an odd last
// column or row.
Size frameSize(const FilterImage& rgba, const FrameFormat& format);
// Packed RGBA as a frame of packed rows, with luma and chroma as the looks take them: full range,
// BT.601.
std::vector<std::uint8_t> frameOf(const FilterImage& rgba, const FrameFormat& format);

}  // namespace lumora::tool
