// What a look offers to the pipeline, and the launcher that runs it on a picture.
#pragma once

#include <cstddef>
#include <cstdint>

#include "looks/colour/tone_curve.h"
#include "platform/picture.h"
#include "platform/status.h"

namespace lumora {

// One run of rows in place: a stripe, or the whole picture.
struct LookJob {
  int widthPixels;
  int rows;  // luma rows for NV pictures, always even
  std::ptrdiff_t strideBytes;
  std::uint8_t* pixels;  // first RGBA or luma row
  std::uint8_t* chroma;  // first chroma row of NV pictures, otherwise null
  // Packed at the picture's width, from the run's first row on; null for looks without a texture.
  const std::uint8_t* texture;
  const std::uint8_t* block;  // the look's tuning block from its flag byte on; null without one
  int ratio;                  // strength 8..32; up to 16 a look gives its plain result
};

using RunForm = void (*)(const LookJob& job);

// A look's own curves, one per channel or one for all: the plain ones, used while its tuning block
// is not in use, and those that strengths above 16 ramp toward (none in looks that do not ramp).
struct BuiltInCurves {
  int count;
  Knots plain[3];
  Knots strong[3];
};

struct Look {
  RunForm rgba;
  RunForm nv21;
  RunForm nv12;
  int textureBytesPerPixel;
  const BuiltInCurves* builtIn;  // null for looks whose curves cannot be tuned

  RunForm runForm(PixelFormat format) const {
    switch (format) {
      case PixelFormat::kNv21: return nv21;
      case PixelFormat::kNv12: return nv12;
      default: return rgba;
    }
  }
};

// What a call hands to a look beside the picture.
struct LookInputs {
  const std::uint8_t* texture;
  const std::uint8_t* block;
  int ratio;
};

// Runs the look on the whole picture: on four stripes, or on the calling thread. Returns kOk or
// kThreadFailed (the stripes whose worker ran are done, the others untouched).
Status runLook(const Look& look, const Picture& picture, const LookInputs& inputs, Threads threads);

}  // namespace lumora
