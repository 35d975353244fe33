#include "resources/resample.h"

#include <cstring>

#include "resources/row_gather.h"

namespace lumora {
namespace {

// Wide rows are gathered in pieces, so that the tables of a piece take little of a worker's stack
// (14 kB) and of its nearest cache.
constexpr std::size_t kPieceBytes = 12288;

std::size_t rowBytes(std::int32_t width, std::int32_t format) {
  return static_cast<std::size_t>(width) * static_cast<std::size_t>(format);
}

void clearRows(const ResizeStripe& stripe) {
  const std::size_t dstRowBytes = rowBytes(stripe.dstWidth, stripe.format);
  std::memset(stripe.dst + static_cast<std::size_t>(stripe.firstRow) * dstRowBytes, 0,
              static_cast<std::size_t>(stripe.endRow - stripe.firstRow) * dstRowBytes);
}

template <class Rule>
void resampleRows(const ResizeStripe& stripe) {
  if (stripe.dstWidth < 1 || stripe.firstRow >= stripe.endRow) return;
  if (stripe.srcWidth < 1 || stripe.srcHeight < 1) return clearRows(stripe);

  const Rule column(stripe.srcWidth, stripe.dstWidth);
  const Rule row(stripe.srcHeight, stripe.dstHeight);
  const std::size_t srcRowBytes = rowBytes(stripe.srcWidth, stripe.format);
  const std::size_t dstRowBytes = rowBytes(stripe.dstWidth, stripe.format);
  std::uint16_t tables[kPieceBytes * 9 / 16];
  for (std::size_t first = 0; first < dstRowBytes;) {
    const RowGather piece(column, {stripe.srcWidth, stripe.format}, first, dstRowBytes - first,
                          tables);
    std::int64_t previousSource = -1;
    for (std::int64_t y = stripe.firstRow; y < stripe.endRow; ++y) {
      std::uint8_t* dst = stripe.dst + static_cast<std::size_t>(y) * dstRowBytes + first;
      const std::int64_t source = row(y);
      if (source == previousSource) {
        std::memcpy(dst, dst - dstRowBytes, piece.bytes());
      } else {
        piece.gather(stripe.src + static_cast<std::size_t>(source) * srcRowBytes, dst);
      }
      previousSource = source;
    }
    first += piece.bytes();
  }
}

}  // namespace

void MixImgResizeStripe(const ResizeStripe& stripe) {
  if (stripe.format != kFormatGray && stripe.format != kFormatRGB) return;
  resampleRows<FixedPointRule>(stripe);
}

ResizeStripe rowsOf(const ResizeStripe& whole, const Stripe& rows) {
  ResizeStripe stripe = whole;
  stripe.firstRow = rows.first;
  stripe.endRow = rows.first + rows.count;
  return stripe;
}

void ImResizeNearest(std::int32_t srcWidth, std::int32_t srcHeight, std::int32_t dstWidth,
                     std::int32_t dstHeight, const std::uint8_t* src, std::uint8_t* dst) {
  resampleRows<FloatRule>({.src = src,
                           .dst = dst,
                           .srcWidth = srcWidth,
                           .srcHeight = srcHeight,
                           .dstWidth = dstWidth,
                           .dstHeight = dstHeight,
                           .firstRow = 0,
                           .endRow = dstHeight,
                           .format = kFormatGray});
}

}  // namespace lumora
