#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>

#include "effects/masks/mask_kernels.h"
#include "effects/masks/masks.h"

namespace lumora {
namespace {

// Squares and their sums are unsigned 64-bit: coordinates differ by less than 2^32 / 2 + 20000, so
// a sum of two squares stays below 2^64.
using Square = std::uint64_t;

Square squareOf(std::int64_t v) { return static_cast<Square>(v * v); }

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

// Columns [first, end) of a row.
struct Span {
  int first;
  int end;
  int count() const { return end - first; }
};

class CircleMask {
 public:
  CircleMask(std::uint8_t* mask, int width, int height, const BlurParam& circle);
  void build() const;

 private:
  std::uint8_t* row(std::int64_t y) const { return mask_ + y * width_; }
  Span span(Square limit, Square dySquared) const;
  void clearRow(std::int64_t y) const {
    std::memset(row(y), 255, static_cast<std::size_t>(width_));
  }
  void buildRow(int y) const;
  void fillRing(int y, Span columns) const;
  std::uint8_t ringValue(Square sum) const;

  std::uint8_t* mask_;
  int width_;
  int height_;
  std::int64_t centreX_, centreY_, innerRadius_, outerRadius_;
  std::int64_t slope_;
  Square innerLimit_;  // sums below it are sharp
  Square outerLimit_;  // sums from here on are blurred
};

CircleMask::CircleMask(std::uint8_t* mask, int width, int height, const BlurParam& circle)
    : mask_(mask),
      width_(width),
      height_(height),
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
Span CircleMask::span(Square limit, Square dySquared) const {
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

void CircleMask::fillRing(int y, Span columns) const {
  if (columns.count() <= 0) return;
  std::uint8_t* const out = row(y) + columns.first;
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

void CircleMask::buildRow(int y) const {
  clearRow(y);
  const Square dySquared = squareOf(y - centreY_);
  const Span disc = span(outerLimit_, dySquared);
  const Span sharp = span(std::min(innerLimit_, outerLimit_), dySquared);
  if (sharp.count() <= 0) return fillRing(y, disc);
  fillRing(y, {disc.first, sharp.first});
  std::memset(row(y) + sharp.first, 0, static_cast<std::size_t>(sharp.count()));
  fillRing(y, {sharp.end, disc.end});
}

// Rows at the same distance above and below the centre are equal.
void CircleMask::build() const {
  const std::int64_t top = centreY_ - outerRadius_, bottom = centreY_ + outerRadius_;
  for (int y = 0; y < height_; ++y) {
    const std::int64_t mirrored = 2 * centreY_ - y;
    if (y < top || y > bottom) {
      clearRow(y);
    } else if (mirrored >= 0 && mirrored < y) {
      std::memcpy(row(y), row(mirrored), static_cast<std::size_t>(width_));
    } else {
      buildRow(y);
    }
  }
}

}  // namespace

void BuildCircleMask(std::uint8_t* mask, int width, int height, const BlurParam& circle) {
  CircleMask(mask, width, height, circle).build();
}

}  // namespace lumora
