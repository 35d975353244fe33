// One process call on its way through the pipeline.
#pragma once

#include "effects/mosaic/mosaic.h"
#include "platform/picture.h"
#include "resources/handle_layout.h"

namespace lumora {

struct Call {
  Picture picture;
  FilterHandleView handle;
  std::uint32_t mode;
  std::uint32_t direction;
  int ratio;  // the adjusted strength; the blur level for blur and tilt-shift
  MosaicRect rect;
  int mosaicSize;
  Threads threads;
  // Room for a copy of the picture, not written yet; null from the full strength on.
  std::uint8_t* copy;
  // Null for filterProcess.
  const BlurParam* blur;
  const TiltShiftParam* tiltShift;
  const FixColorParam* fixColour;
};

}  // namespace lumora
