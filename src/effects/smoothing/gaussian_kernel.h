// The recursive Gaussian of one plane, for the level in use.
#pragma once

#include <cstdint>

#include "effects/smoothing/gaussian.h"
#include "platform/vector_level.h"

namespace lumora {

struct GaussianPlane {
  const std::uint8_t* in;
  std::uint8_t* out;
  int width;
  int height;
  float* work;  // 2 x width x height floats
  GaussianCoefficients coefficients;
};
using GaussianKernel = void (*)(const GaussianPlane& plane);

LUMORA_PER_LEVEL(GaussianKernel, kGaussian)

}  // namespace lumora
