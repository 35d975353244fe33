// Places and lengths as shares of the picture, for hosts that set an effect up before they know the
// picture's size and keep the settings when it changes.
#pragma once

#include <array>
#include <cstdint>

#include "host/session.h"
#include "host/settings.h"

namespace lumora::plugin {

enum Share : std::uint8_t {
  kRectX,
  kRectY,
  kRectWidth,
  kRectHeight,
  kBlockEdge,
  kCentreX,
  kCentreY,
  kInnerRadius,
  kOuterRadius,
  kBandX1,
  kBandY1,
  kBandX2,
  kBandY2,
  kShareCount
};

struct ShareFacts {
  const char* name;
  Setting setting;  // that it is a part of
  double lowest;
  double highest;
  double standard;
  const char* help;
};

inline constexpr std::array<ShareFacts, kShareCount> kShares{{
    {"rect-x", kRect, 0, 1, 0.25, "left edge of the rectangle, as a share of the width"},
    {"rect-y", kRect, 0, 1, 0.25, "top edge of the rectangle, as a share of the height"},
    {"rect-width", kRect, 0, 1, 0.5, "width of the rectangle, as a share of the picture's"},
    {"rect-height", kRect, 0, 1, 0.5, "height of the rectangle, as a share of the picture's"},
    {"block", kBlock, 0, 1, 1.0 / 12,
     "edge of one block, as a share of the rectangle's shorter side"},
    {"centre-x", kCentre, -1, 2, 0.5, "centre of the sharp circle, as a share of the width"},
    {"centre-y", kCentre, -1, 2, 0.5, "centre of the sharp circle, as a share of the height"},
    {"inner-radius", kRadius, 0, 2, 0.25, "sharp up to here, as a share of the shorter side"},
    {"outer-radius", kRadius, 0, 2, 0.5,
     "fully blurred from here on, as a share of the shorter side"},
    {"band-x1", kBand, -1, 2, 0.5,
     "a point on one edge of the sharp band, as a share of the width"},
    {"band-y1", kBand, -1, 2, 0.4,
     "a point on one edge of the sharp band, as a share of the height"},
    {"band-x2", kBand, -1, 2, 0.5, "a point on the other edge, as a share of the width"},
    {"band-y2", kBand, -1, 2, 0.8, "a point on the other edge, as a share of the height"},
}};

using Shares = std::array<double, kShareCount>;

constexpr Shares standardShares() {
  Shares shares{};
  for (int i = 0; i < kShareCount; ++i) shares[i] = kShares[i].standard;
  return shares;
}

// Gives the settings the places and lengths that the shares amount to in a picture of 88 to 20000
// pixels a side: such as the effects take, whatever the shares are (not a number: the standard).
void place(host::Settings& settings, const Shares& shares, host::Size picture);

}  // namespace lumora::plugin
