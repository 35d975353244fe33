#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>

#include "effects/masks/mask_kernels.h"
#include "effects/masks/masks.h"

namespace lumora {
namespace {

using Square = std::uint64_t;

// The distance of a pixel whose dx squared + dy squared is sum. It never falls as the sum rises, so
// comparing distances comes down to comparing sums with a threshold.
float distanceOf(Square sum) { return std::sqrt(static_cast<float>(sum)); }

// The smallest sum whose distance lies beyond a limit.
template <class IsBeyond>
Square firstBeyond(IsBeyond isBeyond) {
  Square low = 0, high = Square{1} << 63;
  while (low < high) {
    const Square middle = low + (high - low) / 2;
    if (isBeyond(distanceOf(middle))) {
      high = middle;
    } else {
      low = middle + 1;
    }
  }
  return low;
}

// The largest n with n squared at most v.
std::int64_t floorSqrt(Square v) {
  auto root = static_cast<Square>(std::sqrt(static_cast<double>(v)));
  while (root * root > v) --root;
  while ((root + 1) * (root + 1) <= v) ++root;
  return static_cast<std::int64_t>(root);
}

}  // namespace

CircleMask::CircleMask(int width, const BlurParam& circle)
    : width_(width),
      centreX_(circle.centreX),
      centreY_(circle.centreY),
      innerRadius_(circle.innerRadius),
      outerRadius_(circle.outerRadius) {
  const std::int64_t ring = outerRadius_ - innerRadius_;
  slope_ = ring > 0 ? 255 * 2048 / ring : 0;
  innerLimit_ = firstBeyond([this](float d) { return d > static_cast<double>(innerRadius_); });
  outerLimit_ =
      firstBeyond([this](float d) { return static_cast<std::int64_t>(d) > outerRadius_; });
}

// The columns whose sum lies below the limit. None is farther from the centre than the outer
// radius.
CircleMask::Span CircleMask::span(Square limit, Square dySquared) const {
  if (limit <= dySquared) return {0, 0};
  const std::int64_t reach = std::min(floorSqrt(limit - 1 - dySquared), outerRadius_);
  const auto inRow = [this](std::int64_t x) {
    return static_cast<int>(std::clamp<std::int64_t>(x, 0, width_));
  };
  return {inRow(centreX_ - reach), inRow(centreX_ + reach + 1)};
}

std::uint8_t CircleMask::ringValue(Square sum) const {
  const auto distance = static_cast<std::int64_t>(distanceOf(sum));
  return static_cast<std::uint8_t>(255 - (((outerRadius_ - distance) * slope_) >> 11));
}

void CircleMask::fillRing(int y, Span columns, std::uint8_t* row) const {
  if (columns.count() <= 0) return;
  std::uint8_t* const out = row + columns.first;
  const std::int64_t dx = columns.first - centreX_, dy = y - centreY_;
  if (slope_ == 0) {
    std::memset(out, 255, static_cast<std::size_t>(columns.count()));
  } else if (outerRadius_ <= kMaxRingExtent) {
    kMask().fillRing({out, columns.count(), static_cast<std::int32_t>(dx),
                      static_cast<std::int32_t>(dy * dy), static_cast<std::int32_t>(outerRadius_),
                      static_cast<std::int32_t>(slope_)});
  } else {
    for (int x = 0; x < columns.count(); ++x) out[x] = ringValue(squareOf(dx + x) + squareOf(dy));
  }
}

void CircleMask::fillRow(int y, std::uint8_t* out) const {
  std::memset(out, 255, static_cast<std::size_t>(width_));
  if (y < centreY_ - outerRadius_ || y > centreY_ + outerRadius_) return;
  const Square dySquared = squareOf(y - centreY_);
  const Span disc = span(outerLimit_, dySquared);
  const Span sharp = span(std::min(innerLimit_, outerLimit_), dySquared);
  if (sharp.count() <= 0) return fillRing(y, disc, out);
  fillRing(y, {disc.first, sharp.first}, out);
  std::memset(out + sharp.first, 0, static_cast<std::size_t>(sharp.count()));
  fillRing(y, {sharp.end, disc.end}, out);
}

}  // namespace lumora
