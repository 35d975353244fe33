#include "effects/smoothing/gaussian.h"

#include <algorithm>
#include <cassert>
#include <cmath>

#include "effects/smoothing/gaussian_kernel.h"

namespace lumora {
namespace {

// The scale q of the recursion for a sigma: two straight lines, and a cubic from the one to the
// other with their slopes.
constexpr double recursionScale(double sigma) {
  constexpr double kLowSlope = 0.694852, kHighSlope = 0.98711;
  constexpr double kLowEnd = 2.0, kHighStart = 5.0, kHighStartScale = 4.401745;
  constexpr double kLowOffset = 0.0035942;
  if (sigma <= kLowEnd) return kLowSlope * sigma + kLowOffset;
  if (sigma >= kHighStart) return kHighStartScale + kHighSlope * (sigma - kHighStart);
  constexpr double kSpan = kHighStart - kLowEnd;
  const double t = (sigma - kLowEnd) / kSpan;
  const double t2 = t * t, t3 = t2 * t;
  return (2 * t3 - 3 * t2 + 1) * (kLowSlope * kLowEnd + kLowOffset) +
         (t3 - 2 * t2 + t) * kSpan * kLowSlope + (3 * t2 - 2 * t3) * kHighStartScale +
         (t3 - t2) * kSpan * kHighSlope;
}

// The third-order design of Young and van Vliet. Only sums, products and quotients of doubles, so
// that every processor finds the same coefficients.
constexpr GaussianCoefficients designGaussian(int row) {
  if (row == 0) return {1, 0, 0, 0};
  const double q = recursionScale(row / 100.0);
  const double q2 = q * q, q3 = q2 * q;
  const double b0 = 1.57825 + 2.44413 * q + 1.4281 * q2 + 0.422205 * q3;
  const double b1 = 2.44413 * q + 2.85619 * q2 + 1.26661 * q3;
  const double b2 = -(1.4281 * q2 + 1.26661 * q3);
  const double b3 = 0.422205 * q3;
  return {static_cast<float>(1 - (b1 + b2 + b3) / b0), static_cast<float>(b1 / b0),
          static_cast<float>(b2 / b0), static_cast<float>(b3 / b0)};
}

}  // namespace

GaussianCoefficients gaussianCoefficients(int row) { return designGaussian(row); }

int gaussianRow(float sigma) {
  const float width = std::fabs(sigma);
  if (!(width < 14.9f)) return kGaussianRows - 1;
  return std::min(static_cast<int>(400 * width) / 4, kGaussianRows - 1);
}

void RecursiveGaussianPlanes(const PlanarImage& in, float sigma, const PlanarImage& out,
                             std::uint8_t* work) {
  assert(in.widthPixels >= kGaussianMinExtent && in.heightRows >= kGaussianMinExtent);
  const GaussianCoefficients coefficients = gaussianCoefficients(gaussianRow(sigma));
  for (int channel = 0; channel < kChannelCount; ++channel) {
    kGaussian()({in.plane(channel), out.plane(channel), in.widthPixels, in.heightRows,
                 reinterpret_cast<float*>(work), coefficients});
  }
}

}  // namespace lumora
