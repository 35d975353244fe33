// The recursive Gaussian: smooths a small image at a cost that does not depend on the width of the
// smoothing.
#pragma once

#include "effects/pyramid/planar_image.h"

namespace lumora {

// y[n] = input x[n] + back1 y[n - 1] + back2 y[n - 2] + back3 y[n - 3]
struct GaussianCoefficients {
  float input;
  float back1;
  float back2;
  float back3;
};

// Sigma is known in steps of 0.01, up to 14.89.
inline constexpr int kGaussianRows = 1490;
GaussianCoefficients gaussianCoefficients(int row);
// The row of a sigma; its sign does not matter.
int gaussianRow(float sigma);

// The smallest extent, in both directions, that RecursiveGaussianPlanes takes.
inline constexpr int kGaussianMinExtent = 64;
// Bytes of its working memory.
constexpr std::ptrdiff_t gaussianWorkBytes(const PlanarImage& image) {
  return 8 * std::ptrdiff_t{image.widthPixels} * image.heightRows;
}

// Smooths each plane of `in` into the plane of `out`, which has the same size. work is aligned to
// 16 bytes.
void RecursiveGaussianPlanes(const PlanarImage& in, float sigma, const PlanarImage& out,
                             std::uint8_t* work);

}  // namespace lumora
