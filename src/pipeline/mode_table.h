// The modes and what each needs: one row per mode, read by the dispatcher.
#pragma once

#include <cstdint>

#include "looks/look.h"
#include "pipeline/call.h"

namespace lumora {

inline constexpr std::uint32_t kModeCount = 20;

// One message per format.
struct FormatMessages {
  const char* rgba;
  const char* nv21;
  const char* nv12;

  const char* of(PixelFormat format) const {
    switch (format) {
      case PixelFormat::kNv21: return nv21;
      case PixelFormat::kNv12: return nv12;
      default: return rgba;
    }
  }
};

struct ModeRow;
using Route = Status (*)(const Call& call, const ModeRow& row);

struct ModeRow {
  const char* name;
  Route route;
  const Look& (*look)();  // null for the effects
  int texturePlane;       // first plane of its texture in the handle, or kNoPlane
  FormatMessages failure;
  FormatMessages failureOnCaller;  // on the calling thread
};
inline constexpr int kNoPlane = -1;

// The row of a mode in 1..20, null for any other.
const ModeRow* findMode(std::uint32_t mode);

// The eight looks that blend a texture: a handle made for one of them refuses the others.
constexpr bool isTextureMode(std::uint32_t mode) {
  return (mode >= LUMORA_MODE_LAODIANYING && mode <= LUMORA_MODE_EARLYBIRD) ||
         (mode >= LUMORA_MODE_XPRO2 && mode <= LUMORA_MODE_LOFI);
}

}  // namespace lumora
