// The masks of the focus effects: one byte a pixel, 0 where the picture stays sharp and 255 where
// it is blurred.
//
// The parameters come from the host and may be any integers.
#pragma once

#include <cstdint>

#include "lumora/filters.h"

namespace lumora {

// Makes a mask's rows where they are used, so that no plane of them goes through memory.
class MaskRows {
 public:
  // Writes row y at `out`. Several threads may ask at the same time.
  virtual void fillRow(int y, std::uint8_t* out) const = 0;

 protected:
  ~MaskRows() = default;
};

// 0 within the inner radius, 255 outside the outer one, rising by the distance's whole pixels in
// the ring between them. A ring of no width is a hard edge at the outer radius.
class CircleMask final : public MaskRows {
 public:
  CircleMask(int width, const BlurParam& circle);
  void fillRow(int y, std::uint8_t* out) const override;

 private:
  // Squares and their sums are unsigned 64-bit: coordinates differ by less than 2^32 / 2 + 20000,
  // so a sum of two squares stays below 2^64.
  using Square = std::uint64_t;

  // Columns [first, end) of a row.
  struct Span {
    int first;
    int end;
    int count() const { return end - first; }
  };

  static Square squareOf(std::int64_t v) { return static_cast<Square>(v * v); }
  Span span(Square limit, Square dySquared) const;
  void fillRing(int y, Span columns, std::uint8_t* row) const;
  std::uint8_t ringValue(Square sum) const;

  int width_;
  std::int64_t centreX_, centreY_, innerRadius_, outerRadius_;
  std::int64_t slope_;
  Square innerLimit_;  // sums below it are sharp
  Square outerLimit_;  // sums from here on are blurred
};

// What the mask holds along a line across the band. Places are whole numbers, counted from the
// first edge; they are doubles because a band whose edges hardly cross its lines is wider than any
// integer. Up to 2^53 they are exact.
class BandProfile {
 public:
  BandProfile(double bandWidth, int core);

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

// 255 before and behind the band, 0 in its core, linear ramps between them.
class TiltMask final : public MaskRows {
 public:
  TiltMask(int width, const TiltShiftParam& tilt);
  void fillRow(int y, std::uint8_t* out) const override;

 private:
  // A slanted band, in single precision: its edges are the lines y = slope x + offset. Points
  // anywhere in the 32-bit range give slopes of 2^-32 to 2^32 and quotients below 2^100.
  struct SlantedEdges {
    explicit SlantedEdges(const TiltShiftParam& tilt);
    // The column of the first edge in row y.
    double start(int y) const;

    float dx, dy, slope, firstOffset, secondOffset;
  };

  bool isHorizontal() const { return tilt_.x1 == tilt_.x2; }
  bool isVertical() const { return !isHorizontal() && tilt_.y1 == tilt_.y2; }
  double bandWidth() const;
  double verticalStart() const;

  int width_;
  TiltShiftParam tilt_;
  SlantedEdges edges_;  // not read for upright bands
  BandProfile profile_;
};

}  // namespace lumora
