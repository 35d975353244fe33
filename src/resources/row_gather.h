// Where the bytes of a stretched row come from.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "resources/resample_kernel.h"

namespace lumora {

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

struct RowFormat {
  std::int32_t srcWidthPixels;
  std::int32_t bytesPerPixel;

  std::size_t srcRowBytes() const {
    return static_cast<std::size_t>(srcWidthPixels) * static_cast<std::size_t>(bytesPerPixel);
  }
};

// Where the bytes of a destination row, or of a piece of one, come from: computed once, used for
// every row. The tables lie in memory of the owner's; source rows have at most 3 x 20000 bytes, so
// places in them fit 16 bits.
class RowGather {
 public:
  // How many entries the tables of a whole row of so many bytes take.
  static constexpr std::size_t tableSize(std::size_t bytes) {
    return std::max(bytes + 2, (bytes + kPieceUnit - 1) / kPieceUnit * kPieceUnit /
                                   kGatherBlockBytes * kEntriesPerBlock);
  }

  // As many of a row's destination bytes from `first` on, where a pixel begins, as the tables hold.
  template <class Rule>
  RowGather(const Rule& column, RowFormat format, std::size_t first, std::size_t rest,
            std::span<std::uint16_t> tables)
      : tables_(tables.data()) {
    const std::size_t blocksHeld = tables.size() / kEntriesPerBlock * kGatherBlockBytes;
    bytes_ = std::min(rest, blocksHeld / kPieceUnit * kPieceUnit);
    inBlocks_ = findBlocks(column, format, first);
    if (inBlocks_) return;
    bytes_ = std::min(rest, tables.size() / 3 * 3);
    findSources(column, format, first, bytes_, tables_);
  }

  std::size_t bytes() const { return bytes_; }

  void gather(const std::uint8_t* src, std::uint8_t* dst) const {
    if (inBlocks_) {
      resampleKernel().gatherRow({tables_, picks(), blocks(), bytes_}, src, dst);
    } else {
      for (std::size_t i = 0; i < bytes_; ++i) dst[i] = src[tables_[i]];
    }
  }

 private:
  // A block takes its base and 16 picks of a byte each. Pieces are whole blocks and whole pixels of
  // either format.
  static constexpr std::size_t kEntriesPerBlock = 1 + kGatherBlockBytes / 2;
  static constexpr std::size_t kPieceUnit = 3 * kGatherBlockBytes;

  std::size_t blocks() const { return (bytes_ + kGatherBlockBytes - 1) / kGatherBlockBytes; }
  std::uint8_t* picks() const { return reinterpret_cast<std::uint8_t*>(tables_ + blocks()); }

  // The sources of `count` bytes of a row from byte `first` on.
  template <class Rule>
  static void findSources(const Rule& column, RowFormat format, std::size_t first,
                          std::size_t count, std::uint16_t* source) {
    const auto pixelBytes = static_cast<std::size_t>(format.bytesPerPixel);
    std::size_t pixel = first / pixelBytes, c = first % pixelBytes;
    for (std::size_t i = 0; i < count; ++i) {
      const auto srcPixel = static_cast<std::size_t>(column(static_cast<std::int64_t>(pixel)));
      source[i] = static_cast<std::uint16_t>(srcPixel * pixelBytes + c);
      if (++c == pixelBytes) ++pixel, c = 0;
    }
  }

  // Whether every block of the piece draws on 16 neighbouring bytes of the source row; then also
  // which ones. When a texture is stretched it always does: source bytes then are at most as far
  // apart as destination bytes.
  template <class Rule>
  bool findBlocks(const Rule& column, RowFormat format, std::size_t first) {
    const std::size_t srcRowBytes = format.srcRowBytes();
    if (bytes_ < kGatherBlockBytes || srcRowBytes < kGatherBlockBytes) return false;
    for (std::size_t k = 0; k < blocks(); ++k) {
      std::uint16_t source[kGatherBlockBytes];
      const std::size_t start = std::min(k * kGatherBlockBytes, bytes_ - kGatherBlockBytes);
      findSources(column, format, first + start, kGatherBlockBytes, source);
      // No load passes the end of the source row.
      const std::size_t base = std::min<std::size_t>(
          *std::min_element(std::begin(source), std::end(source)), srcRowBytes - kGatherBlockBytes);
      tables_[k] = static_cast<std::uint16_t>(base);
      for (std::size_t i = 0; i < kGatherBlockBytes; ++i) {
        const std::size_t pick = source[i] - base;
        if (pick >= kGatherBlockBytes) return false;
        picks()[k * kGatherBlockBytes + i] = static_cast<std::uint8_t>(pick);
      }
    }
    return true;
  }

  std::uint16_t*
      tables_;  // a base for each block and the picks behind them, or a source for each byte
  std::size_t bytes_;
  bool inBlocks_;
};

}  // namespace lumora
