// What a look offers to the pipeline, and the launcher that runs it on a picture.
#pragma once

#include <cstddef>
#include <cstdint>

#include "pixels/pixel_rows.h"
#include "pixels/tone_curve.h"
#include "platform/picture.h"
#include "platform/status.h"

namespace lumora {

// A look's work on one run of rows.
struct LookJob {
  PixelRows rows;
  const std::uint8_t* block;  // the look's tuning block from its flag byte on; null without one
  int ratio;  // strength 8..32; below 16 the plain result is mixed into the picture, above it a
              // look does more
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
  RunForm nv;
  int textureBytesPerPixel;
  const BuiltInCurves* builtIn;  // null for looks whose curves cannot be tuned

  RunForm runForm(const Picture& picture) const { return picture.isRgba() ? rgba : nv; }
};

// What a call hands to a look beside the picture.
struct LookInputs {
  TextureSource texture;
  const std::uint8_t* block;
  int ratio;
};

// Runs the look on the whole picture: on four stripes, or on the calling thread. Returns kOk or
// kThreadFailed (the stripes whose worker ran are done, the others untouched).
Status runLook(const Look& look, const Picture& picture, const LookInputs& inputs, Threads threads);

}  // namespace lumora
