// The 3 x 3 binomial blur.
#pragma once

#include "effects/pyramid/planar_image.h"

namespace lumora {

// Convolves each plane of `in` with (1 2 1; 2 4 2; 1 2 1) / 16, rounded down, into the plane of
// `out`, which has the same size. The image is mirrored about its edge samples. At least 2 x 2.
void Blur3x3Planes(const PlanarImage& in, const PlanarImage& out);

}  // namespace lumora
