// The masks of the focus effects: one byte a pixel, rows packed at the picture's width, 0 where the
// picture stays sharp and 255 where it is blurred.
//
// The parameters come from the host and may be any integers.
#pragma once

#include <cstdint>

#include "lumora/filters.h"

namespace lumora {

// 0 within the inner radius, 255 outside the outer one, rising by the distance's whole pixels in
// the ring between them. A ring of no width is a hard edge at the outer radius.
void BuildCircleMask(std::uint8_t* mask, int width, int height, const BlurParam& circle);

// 255 before and behind the band, 0 in its core, linear ramps between them.
void BuildTiltMask(std::uint8_t* mask, int width, int height, const TiltShiftParam& tilt);

}  // namespace lumora
