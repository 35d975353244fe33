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
  // No block before this one reaches as far as the position.
  int firstBlockNear(int position) const { return position * subsampling_ / edge_; }
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
};

// Mixes the means of the blocks of a block row into them, `weight` sixteenths of them.
void pixelateBlockRow(const MosaicPlane& plane, int blockRow, int weight);

}  // namespace lumora
