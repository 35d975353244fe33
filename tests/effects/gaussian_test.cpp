// The recursive Gaussian: its coefficients, and its bytes against the plain recursion.
#include "effects/smoothing/gaussian.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>

#include "effects/pyramid_reference.h"

namespace lumora::test {
namespace {

TEST(GaussianCoefficients, HaveTheDesignedValues) {
  constexpr struct {
    int row;
    double input, back1, back2, back3;
  } kDesigned[] = {
      {0, 1, 0, 0, 0},
      {50, 0.600001, 0.480779, -0.087722, 0.006942},
      {100, 0.382527, 0.856059, -0.273452, 0.034866},
      {200, 0.177374, 1.390876, -0.696591, 0.128341},
      {500, 0.020765, 2.290633, -1.785096, 0.473698},
  };
  for (const auto& r : kDesigned) {
    const GaussianCoefficients k = gaussianCoefficients(r.row);
    EXPECT_NEAR(k.input, r.input, 5.1e-7) << r.row;
    EXPECT_NEAR(k.back1, r.back1, 5.1e-7) << r.row;
    EXPECT_NEAR(k.back2, r.back2, 5.1e-7) << r.row;
    EXPECT_NEAR(k.back3, r.back3, 5.1e-7) << r.row;
  }
}

TEST(GaussianCoefficients, SumToOneAndChangeWithoutJumps) {
  for (int row = 1; row < kGaussianRows; ++row) {
    const GaussianCoefficients k = gaussianCoefficients(row);
    const GaussianCoefficients before = gaussianCoefficients(row - 1);
    EXPECT_NEAR(double{k.input} + k.back1 + k.back2 + k.back3, 1, 3e-7) << row;
    EXPECT_LT(k.input, before.input) << row;
    EXPECT_LT(std::fabs(k.back1 - before.back1), 0.02) << row;
  }
}

TEST(GaussianCoefficients, RowsAreHundredthsOfSigma) {
  const std::pair<float, int> rows[] = {{0.0f, 0},     {0.0099f, 0},   {0.5f, 50},
                                        {-0.5f, 50},   {4.5689f, 456}, {14.899f, 1489},
                                        {14.9f, 1489}, {1e30f, 1489}};
  for (const auto& [sigma, row] : rows) EXPECT_EQ(gaussianRow(sigma), row) << sigma;
}

Planes smoothed(Planes in, float sigma) {
  Planes out(in.width, in.height);
  std::vector<float> work(2 * static_cast<std::size_t>(in.width * in.height));
  RecursiveGaussianPlanes(in.view(), sigma, out.view(),
                          reinterpret_cast<std::uint8_t*>(work.data()));
  return out;
}

void expectPlainRecursion(const Planes& in, float sigma) {
  const Planes expected = referenceGaussian(in, gaussianRow(sigma));
  for (const int level : supportedLevels()) {
    const ForcedLevel forced(level);
    std::feclearexcept(FE_UNDERFLOW);
    EXPECT_EQ(smoothed(in, sigma).bytes, expected.bytes)
        << in.width << " x " << in.height << ", sigma " << sigma << ", level " << level;
    EXPECT_EQ(std::fetestexcept(FE_UNDERFLOW), 0) << sigma;
  }
}

TEST(Gaussian, SmoothsLikeThePlainRecursion) {
  const std::pair<int, int> sizes[] = {{67, 101}, {64, 64},  {65, 64},   {64, 65},
                                       {96, 70},  {129, 77}, {191, 128}, {250, 193}};
  for (const auto& [width, height] : sizes) {
    const Planes in = noisePlanes(width, height, 21);
    for (const float sigma : {0.0f, 0.013f, 0.4f, 1.0f, 1.999f, 3.3f, 4.57f, 9.0f, 20.0f}) {
      expectPlainRecursion(in, sigma);
    }
    if (kReduced && width == 64) break;
  }
}

// A few bright spots on black: the runs fade over hundreds of samples. No result on the way is a
// denormal number, which some processors would flush to zero.
TEST(Gaussian, FadesToBlackLikeThePlainRecursion) {
  Planes in(400, 320);
  for (const auto& [x, y] : {std::pair{3, 5}, {200, 160}, {399, 319}}) {
    for (int channel = 0; channel < kChannelCount; ++channel) in.at(channel, x, y) = 255;
  }
  for (const float sigma : {0.05f, 0.6f, 2.5f, 4.57f, 14.0f}) expectPlainRecursion(in, sigma);
}

TEST(Gaussian, KeepsConstantPlanes) {
  constexpr int kRowStep = kReduced ? 97 : 5;
  Planes in(64, 64);
  for (int row = 0; row < kGaussianRows; row += kRowStep) {
    for (int channel = 0; channel < kChannelCount; ++channel) {
      std::fill_n(in.view().plane(channel), 64 * 64, toByte(row / kRowStep * 85 + channel * 127));
    }
    for (const int level : supportedLevels()) {
      const ForcedLevel forced(level);
      EXPECT_EQ(smoothed(in, static_cast<float>(row) / 100 + 0.005f).bytes, in.bytes) << row;
    }
  }
}

}  // namespace
}  // namespace lumora::test
