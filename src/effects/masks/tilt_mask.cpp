#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstddef>
#include <cstring>

#include "effects/masks/mask_kernels.h"
#include "effects/masks/masks.h"

namespace lumora {
namespace {

// What the mask holds along a line across the band. Places are whole numbers, counted from the
// first edge; they are doubles because a band whose edges hardly cross its lines is wider than any
// integer. Up to 2^53 they are exact.
class BandProfile {
 public:
  BandProfile(double bandWidth, int core)
      : coreWidth_(std::floor(core * bandWidth / 32)),
        ramp_(std::floor((bandWidth - coreWidth_) / 2)),
        step_(ramp_ > 0 ? 255.0f / static_cast<float>(ramp_) : 255.0f) {}

  // The mask at one place.
  std::uint8_t at(double place) const;
  // The mask at `count` places, the first edge lying at column `start`.
  void fillRow(std::uint8_t* out, int count, double start) const;

 private:
  void fillRamp(std::uint8_t* out, int count, double first, float base, float step) const;

  double coreWidth_;
  double ramp_;
  float step_;
};

std::uint8_t rampValue(double place, float base, float step) {
  return static_cast<std::uint8_t>(base + static_cast<float>(place) * step);
}

std::uint8_t BandProfile::at(double place) const {
  std::uint8_t value;
  fillRow(&value, 1, -place);
  return value;
}

void BandProfile::fillRow(std::uint8_t* out, int count, double start) const {
  const auto column = [count](double place) {
    return static_cast<int>(std::clamp<double>(place, 0, count));
  };
  const double rising = start + ramp_ + coreWidth_;
  const int rampDown = column(start), core = column(start + ramp_);
  const int rampUp = column(rising), end = column(rising + ramp_);
  std::memset(out, 255, static_cast<std::size_t>(rampDown));
  fillRamp(out + rampDown, core - rampDown, rampDown - start, 255, -step_);
  std::memset(out + core, 0, static_cast<std::size_t>(rampUp - core));
  fillRamp(out + rampUp, end - rampUp, rampUp - rising, 0, step_);
  std::memset(out + end, 255, static_cast<std::size_t>(count - end));
}

void BandProfile::fillRamp(std::uint8_t* out, int count, double first, float base,
                           float step) const {
  if (count == 0) return;
  if (first + count <= INT32_MAX) {
    kMask().fillRamp({out, count, static_cast<std::int32_t>(first), base, step});
  } else {
    for (int i = 0; i < count; ++i) out[i] = rampValue(first + i, base, step);
  }
}

double distance(std::int32_t a, std::int32_t b) {
  return std::fabs(static_cast<double>(a) - static_cast<double>(b));
}

// The band runs across the rows: every column is the same.
void buildHorizontalBand(std::uint8_t* mask, int width, int height, const TiltShiftParam& tilt) {
  const BandProfile profile(distance(tilt.y1, tilt.y2), tilt.core);
  const double start = std::min(tilt.y1, tilt.y2);
  for (int y = 0; y < height; ++y) {
    std::memset(mask + std::ptrdiff_t{y} * width, profile.at(y - start),
                static_cast<std::size_t>(width));
  }
}

// The band runs across the columns: every row is the same. A band that touches only the last column
// counts as beside the picture.
void buildVerticalBand(std::uint8_t* mask, int width, int height, const TiltShiftParam& tilt) {
  const BandProfile profile(distance(tilt.x1, tilt.x2), tilt.core);
  const std::int32_t start = std::min(tilt.x1, tilt.x2);
  const bool isBeside = std::max(tilt.x1, tilt.x2) < 0 || start >= width - 1;
  if (isBeside) {
    std::memset(mask, 255, static_cast<std::size_t>(width));
  } else {
    profile.fillRow(mask, width, start);
  }
  for (int y = 1; y < height; ++y) {
    std::memcpy(mask + std::ptrdiff_t{y} * width, mask, static_cast<std::size_t>(width));
  }
}

// A slanted band, in single precision: its edges are the lines y = slope x + offset. Points
// anywhere in the 32-bit range give slopes of 2^-32 to 2^32 and quotients below 2^100.
class SlantedBand {
 public:
  explicit SlantedBand(const TiltShiftParam& tilt)
      : dx_(difference(tilt.x1, tilt.x2)),
        dy_(difference(tilt.y1, tilt.y2)),
        slope_(-dx_ / dy_),
        firstOffset_(offset(tilt.x1, tilt.y1)),
        secondOffset_(offset(tilt.x2, tilt.y2)) {}

  // Measured along a row.
  double width() const { return std::trunc(std::fabs(dx_) + 0.5f + std::fabs(dy_ / slope_)); }
  // The column of the first edge in row y.
  double start(int y) const {
    const float row = static_cast<float>(y);
    return std::min(std::trunc((row - firstOffset_) / slope_),
                    std::trunc((row - secondOffset_) / slope_));
  }

 private:
  static float difference(std::int32_t a, std::int32_t b) {
    return static_cast<float>(std::int64_t{a} - b);
  }
  float offset(std::int32_t x, std::int32_t y) const {
    return static_cast<float>(y) - slope_ * static_cast<float>(x);
  }

  float dx_, dy_, slope_, firstOffset_, secondOffset_;
};

void buildSlantedBand(std::uint8_t* mask, int width, int height, const TiltShiftParam& tilt) {
  const SlantedBand band(tilt);
  const BandProfile profile(band.width(), tilt.core);
  for (int y = 0; y < height; ++y) {
    profile.fillRow(mask + std::ptrdiff_t{y} * width, width, band.start(y));
  }
}

}  // namespace

void BuildTiltMask(std::uint8_t* mask, int width, int height, const TiltShiftParam& tilt) {
  assert(tilt.core >= 0 && tilt.core <= LUMORA_STRONGEST);
  if (tilt.x1 == tilt.x2) {
    buildHorizontalBand(mask, width, height, tilt);
  } else if (tilt.y1 == tilt.y2) {
    buildVerticalBand(mask, width, height, tilt);
  } else {
    buildSlantedBand(mask, width, height, tilt);
  }
}

}  // namespace lumora
