// Nearest-neighbour resampling of tightly packed 8-bit textures.
#pragma once

#include <cstdint>

#include "platform/stripe_runner.h"

namespace lumora {

// Bytes a pixel; the three bytes of a pixel stay together.
inline constexpr std::int32_t kFormatGray = 1;
inline constexpr std::int32_t kFormatRGB = 3;

// Rows [firstRow, endRow) of a resize, at their own positions in dst.
struct ResizeStripe {
  const std::uint8_t* src;
  std::uint8_t* dst;
  std::int32_t srcWidth;
  std::int32_t srcHeight;
  std::int32_t dstWidth;
  std::int32_t dstHeight;
  std::int64_t firstRow;
  std::int64_t endRow;
  std::int32_t format;
};

// All of these: sizes are at most 20000; a destination of size 0 writes nothing, and a source of
// size 0 gives zeros. src and dst do not overlap.

// Resamples the stripe's rows by the fixed-point rule, in steps of 1/1024 source pixel. A format
// other than the two above copies nothing.
void MixImgResizeStripe(const ResizeStripe& stripe);

// Some rows of a resize.
ResizeStripe rowsOf(const ResizeStripe& whole, const Stripe& rows);

// Resamples one byte a pixel by the floating-point rule on the caller's thread. For the same sizes
// it may pick other source pixels than the fixed-point rule.
void ImResizeNearest(std::int32_t srcWidth, std::int32_t srcHeight, std::int32_t dstWidth,
                     std::int32_t dstHeight, const std::uint8_t* src, std::uint8_t* dst);

}  // namespace lumora
