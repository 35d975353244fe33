#include "plugins/common/shares.h"

#include <algorithm>
#include <cmath>

namespace lumora::plugin {
namespace {

// At most twice the longest side.
int pixels(const Shares& shares, Share share, int side) {
  const ShareFacts& facts = kShares[share];
  const double value = std::isnan(shares[share]) ? facts.standard : shares[share];
  return static_cast<int>(std::lround(std::clamp(value, facts.lowest, facts.highest) * side));
}

int even(int value) { return value & ~1; }

// A mosaic's rectangle has even numbers, and sides within limits of its own.
int rectangleSide(int asked, int side) {
  return even(std::clamp(asked, int{LUMORA_SHORTEST_MOSAIC_SIDE},
                         std::min(side, int{LUMORA_LONGEST_MOSAIC_SIDE})));
}

host::Rectangle rectangle(const Shares& shares, int width, int height) {
  const int w = rectangleSide(pixels(shares, kRectWidth, width), width);
  const int h = rectangleSide(pixels(shares, kRectHeight, height), height);
  return {even(std::min(pixels(shares, kRectX, width), width - w)),
          even(std::min(pixels(shares, kRectY, height), height - h)), w, h};
}

}  // namespace

void place(host::Settings& settings, const Shares& shares, host::Size picture) {
  const int width = static_cast<int>(picture.width), height = static_cast<int>(picture.height);
  const int shorter = std::min(width, height);
  const auto point = [&](Share x, Share y) {
    return host::Point{pixels(shares, x, width), pixels(shares, y, height)};
  };
  settings.rectangle = rectangle(shares, width, height);
  const int edge = std::min(settings.rectangle->width, settings.rectangle->height);
  settings.block = std::max(int{LUMORA_SHORTEST_MOSAIC_SIDE}, pixels(shares, kBlockEdge, edge));
  settings.centre = point(kCentreX, kCentreY);
  const int inner = pixels(shares, kInnerRadius, shorter);
  settings.radius = {inner, std::max(inner, pixels(shares, kOuterRadius, shorter))};
  settings.band = {point(kBandX1, kBandY1), point(kBandX2, kBandY2)};
}

}  // namespace lumora::plugin
