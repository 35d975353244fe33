#include "resources/resample.h"

#include <algorithm>
#include <cstring>

#include "resources/resample_kernel.h"

namespace lumora {
namespace {

// Positions in steps of 1/1024 source pixel. The step is truncated, so the last destination pixel
// never samples beyond the last source pixel.
class FixedPointRule {
 public:
  FixedPointRule(std::int32_t srcCount, std::int32_t dstCount)
      : step_(static_cast<std::int64_t>(static_cast<float>(srcCount) * 1024.0F /
                                        static_cast<float>(dstCount))) {}
  std::int64_t operator()(std::int64_t position) const { return (position * step_) >> 10; }

 private:
  std::int64_t step_;
};

// Quotient and products are rounded to float. For positions below 2^22 they stay below srcCount.
class FloatRule {
 public:
  FloatRule(std::int32_t srcCount, std::int32_t dstCount)
      : ratio_(static_cast<float>(srcCount) / static_cast<float>(dstCount)) {}
  std::int64_t operator()(std::int64_t position) const {
    return static_cast<std::int32_t>(static_cast<float>(position) * ratio_);
  }

 private:
  float ratio_;
};

// Wide rows are gathered in pieces, so that the tables of a piece fit on a worker's stack (63 kB)
// and in its nearest caches. A piece is whole pixels of both formats and whole blocks.
constexpr std::size_t kPieceBytes = 12288;
static_assert(kPieceBytes % (3 * kGatherBlockBytes) == 0);

// Where each byte of a piece of a destination row comes from: computed once, used for every row.
class RowGather {
 public:
  // The destination bytes [first, first + bytes) of a row.
  template <class Rule>
  RowGather(const Rule& column, const ResizeStripe& stripe, std::size_t first, std::size_t bytes)
      : bytes_(bytes) {
    const auto pixelBytes = static_cast<std::size_t>(stripe.format);
    for (std::size_t i = 0; i < bytes; i += pixelBytes) {
      const auto pixel =
          static_cast<std::size_t>(column(static_cast<std::int64_t>((first + i) / pixelBytes)));
      for (std::size_t c = 0; c < pixelBytes; ++c) {
        source_[i + c] = static_cast<std::uint32_t>(pixel * pixelBytes + c);
      }
    }
    inBlocks_ = findBlocks(static_cast<std::size_t>(stripe.srcWidth) * pixelBytes);
  }

  std::size_t bytes() const { return bytes_; }

  void gather(const std::uint8_t* src, std::uint8_t* dst) const {
    if (inBlocks_) {
      resampleKernel().gatherRow({base_, pick_, blocks(), bytes_}, src, dst);
    } else {
      for (std::size_t i = 0; i < bytes_; ++i) dst[i] = src[source_[i]];
    }
  }

 private:
  std::size_t blocks() const { return (bytes_ + kGatherBlockBytes - 1) / kGatherBlockBytes; }

  // Whether every block of the piece draws on 16 neighbouring bytes of the source row; then also
  // which ones. When a texture is stretched it always does: source bytes then are at most as far
  // apart as destination bytes.
  bool findBlocks(std::size_t srcRowBytes) {
    if (bytes_ < kGatherBlockBytes || srcRowBytes < kGatherBlockBytes) return false;
    for (std::size_t k = 0; k < blocks(); ++k) {
      const std::uint32_t* source =
          source_ + std::min(k * kGatherBlockBytes, bytes_ - kGatherBlockBytes);
      // No load passes the end of the source row.
      const std::uint32_t base =
          std::min(*std::min_element(source, source + kGatherBlockBytes),
                   static_cast<std::uint32_t>(srcRowBytes - kGatherBlockBytes));
      base_[k] = base;
      for (std::size_t i = 0; i < kGatherBlockBytes; ++i) {
        const std::uint32_t pick = source[i] - base;
        if (pick >= kGatherBlockBytes) return false;
        pick_[k * kGatherBlockBytes + i] = static_cast<std::uint8_t>(pick);
      }
    }
    return true;
  }

  std::size_t bytes_;
  bool inBlocks_;
  std::uint32_t source_[kPieceBytes];
  std::uint32_t base_[kPieceBytes / kGatherBlockBytes];
  std::uint8_t pick_[kPieceBytes];
};

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
  for (std::size_t first = 0; first < dstRowBytes; first += kPieceBytes) {
    const RowGather piece(column, stripe, first, std::min(kPieceBytes, dstRowBytes - first));
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
  }
}

ResizeStripe wholePicture(std::int32_t format, std::int32_t srcWidth, std::int32_t srcHeight,
                          std::int32_t dstWidth, std::int32_t dstHeight, const std::uint8_t* src,
                          std::uint8_t* dst) {
  return {.src = src,
          .dst = dst,
          .srcWidth = srcWidth,
          .srcHeight = srcHeight,
          .dstWidth = dstWidth,
          .dstHeight = dstHeight,
          .firstRow = 0,
          .endRow = dstHeight,
          .format = format};
}

}  // namespace

void MixImgResizeStripe(const ResizeStripe& stripe) {
  if (stripe.format != kFormatGray && stripe.format != kFormatRGB) return;
  resampleRows<FixedPointRule>(stripe);
}

std::array<ResizeStripe, kStripeCount> resizeStripes(const ResizeStripe& whole,
                                                     const Stripes& rows) {
  std::array<ResizeStripe, kStripeCount> stripes;
  for (int k = 0; k < kStripeCount; ++k) {
    stripes[k] = whole;
    stripes[k].firstRow = rows[k].first;
    stripes[k].endRow = rows[k].first + rows[k].count;
  }
  return stripes;
}

Status MixImgResize(std::int32_t format, std::int32_t srcWidth, std::int32_t srcHeight,
                    std::int32_t dstWidth, std::int32_t dstHeight, const std::uint8_t* src,
                    std::uint8_t* dst) {
  const ResizeStripe whole =
      wholePicture(format, srcWidth, srcHeight, dstWidth, dstHeight, src, dst);
  return StripeRunner::run(&MixImgResizeStripe, resizeStripes(whole, splitRoundedUp(dstHeight)));
}

void MixImgResizeGray(std::int32_t srcWidth, std::int32_t srcHeight, std::int32_t dstWidth,
                      std::int32_t dstHeight, const std::uint8_t* src, std::uint8_t* dst) {
  MixImgResizeStripe(wholePicture(kFormatGray, srcWidth, srcHeight, dstWidth, dstHeight, src, dst));
}

void MixImgResizeRGB(std::int32_t srcWidth, std::int32_t srcHeight, std::int32_t dstWidth,
                     std::int32_t dstHeight, const std::uint8_t* src, std::uint8_t* dst) {
  MixImgResizeStripe(wholePicture(kFormatRGB, srcWidth, srcHeight, dstWidth, dstHeight, src, dst));
}

void ImResizeNearest(std::int32_t srcWidth, std::int32_t srcHeight, std::int32_t dstWidth,
                     std::int32_t dstHeight, const std::uint8_t* src, std::uint8_t* dst) {
  resampleRows<FloatRule>(
      wholePicture(kFormatGray, srcWidth, srcHeight, dstWidth, dstHeight, src, dst));
}

}  // namespace lumora
