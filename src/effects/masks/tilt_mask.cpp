#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstddef>
#include <cstring>

#include "effects/masks/mask_kernels.h"
#include "effects/masks/masks.h"

namespace lumora {
namespace {

std::uint8_t rampValue(double place, float base, float step) {
  return static_cast<std::uint8_t>(base + static_cast<float>(place) * step);
}

double distance(std::int32_t a, std::int32_t b) {
  return std::fabs(static_cast<double>(a) - static_cast<double>(b));
}

float difference(std::int32_t a, std::int32_t b) { return static_cast<float>(std::int64_t{a} - b); }

}  // namespace

BandProfile::BandProfile(double bandWidth, int core)
    : coreWidth_(std::floor(core * bandWidth / 32)),
      ramp_(std::floor((bandWidth - coreWidth_) / 2)),
      step_(ramp_ > 0 ? 255.0f / static_cast<float>(ramp_) : 255.0f) {}

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

TiltMask::SlantedEdges::SlantedEdges(const TiltShiftParam& tilt)
    : dx(difference(tilt.x1, tilt.x2)), dy(difference(tilt.y1, tilt.y2)), slope(-dx / dy) {
  firstOffset = static_cast<float>(tilt.y1) - slope * static_cast<float>(tilt.x1);
  secondOffset = static_cast<float>(tilt.y2) - slope * static_cast<float>(tilt.x2);
}

double TiltMask::SlantedEdges::start(int y) const {
  const float row = static_cast<float>(y);
  return std::min(std::trunc((row - firstOffset) / slope),
                  std::trunc((row - secondOffset) / slope));
}

TiltMask::TiltMask(int width, const TiltShiftParam& tilt)
    : width_(width), tilt_(tilt), edges_(tilt), profile_(bandWidth(), tilt.core) {
  assert(tilt.core >= 0 && tilt.core <= LUMORA_STRONGEST);
}

// Of a slanted band measured along a row.
double TiltMask::bandWidth() const {
  if (isHorizontal()) return distance(tilt_.y1, tilt_.y2);
  if (isVertical()) return distance(tilt_.x1, tilt_.x2);
  return std::trunc(std::fabs(edges_.dx) + 0.5f + std::fabs(edges_.dy / edges_.slope));
}

// A band that touches only the last column counts as beside the picture.
double TiltMask::verticalStart() const {
  const std::int32_t start = std::min(tilt_.x1, tilt_.x2);
  const bool isBeside = std::max(tilt_.x1, tilt_.x2) < 0 || start >= width_ - 1;
  return isBeside ? width_ : start;
}

void TiltMask::fillRow(int y, std::uint8_t* out) const {
  if (isHorizontal()) {
    const double start = std::min(tilt_.y1, tilt_.y2);
    std::memset(out, profile_.at(y - start), static_cast<std::size_t>(width_));
  } else {
    profile_.fillRow(out, width_, isVertical() ? verticalStart() : edges_.start(y));
  }
}

}  // namespace lumora
