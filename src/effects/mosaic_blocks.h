// The blocks of a mosaic on one plane of samples: their sums, and filling them with their means.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace lumora {

// A half-open run of rows or columns.
struct BlockRange {
  int first;
  int count;
  int end() const { return first + count; }
};

// Blocks along one side of the rectangle, `edge` pixels each but for a remainder at the end. On a
// chroma plane a block keeps every second position: its place and size are half of the luma ones,
// rounded down, so odd blocks leave gaps between them and a remainder of 1 is empty. A block never
// reaches beyond half the side.
class BlockAxis {
 public:
  BlockAxis(int sidePixels, int edge, int subsampling)
      : side_(sidePixels), edge_(edge), subsampling_(subsampling) {}

  int count() const { return (side_ + edge_ - 1) / edge_; }
  int samples() const { return side_ / subsampling_; }
  // In pixels of the picture, whatever the plane.
  int pixelsOf(int block) const { return std::min(edge_, side_ - block * edge_); }
  BlockRange at(int block) const {
    return {block * edge_ / subsampling_, pixelsOf(block) / subsampling_};
  }
  bool leavesGaps() const { return edge_ % subsampling_ != 0; }

 private:
  int side_;
  int edge_;
  int subsampling_;
};

// The rectangle on one plane: RGBA (4 channels), luma (1) or chroma pairs (2).
struct MosaicPlane {
  std::uint8_t* samples;
  std::ptrdiff_t strideBytes;
  int channels;
  BlockAxis across;
  BlockAxis down;

  std::uint8_t* row(int y) const { return samples + y * strideBytes; }
  int rowBytes() const { return across.samples() * channels; }
  // One 32-bit sum per block and channel: at most 255 x 2000 x 2000.
  int sumsPerBlockRow() const { return across.count() * channels; }
};

// Writes the sums of the samples that block row `blockRow` has within `rows`. columnSums is working
// memory for one entry per byte of a row.
void sumBlockRow(const MosaicPlane& plane, int blockRow, BlockRange rows, std::uint16_t* columnSums,
                 std::uint32_t* sums);

// Fills the blocks of a block row with the means that its sums give.
void fillBlockRow(const MosaicPlane& plane, int blockRow, const std::uint32_t* sums);

// The rows that a block row has within `rows`.
inline BlockRange blockRowWithin(const MosaicPlane& plane, int blockRow, BlockRange rows) {
  const BlockRange block = plane.down.at(blockRow);
  const int first = std::max(block.first, rows.first);
  return {first, std::max(std::min(block.end(), rows.end()) - first, 0)};
}

}  // namespace lumora
