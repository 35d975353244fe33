#include "effects/mosaic_blocks.h"

#include <cstring>

#include "effects/mosaic_kernel.h"

namespace lumora {
namespace {

// Adds the column sums of each block to the block's sums.
template <int kChannels>
void addColumns(const BlockAxis& across, const std::uint16_t* columnSums, std::uint32_t* sums) {
  for (int block = 0; block < across.count(); ++block) {
    const BlockRange columns = across.at(block);
    std::uint32_t total[kChannels] = {};
    for (int x = columns.first; x < columns.end(); ++x) {
      for (int c = 0; c < kChannels; ++c) total[c] += columnSums[x * kChannels + c];
    }
    for (int c = 0; c < kChannels; ++c) sums[block * kChannels + c] += total[c];
  }
}

void addColumns(const MosaicPlane& plane, const std::uint16_t* columnSums, std::uint32_t* sums) {
  switch (plane.channels) {
    case 1: return addColumns<1>(plane.across, columnSums, sums);
    case 2: return addColumns<2>(plane.across, columnSums, sums);
    default: return addColumns<4>(plane.across, columnSums, sums);
  }
}

using Mean = std::uint8_t[4];

void fillPixels(std::uint8_t* at, int count, const Mean& mean) {
  for (int x = 0; x < count; ++x) std::memcpy(at + 4 * x, mean, 3);
}

void fillPairs(std::uint8_t* at, int count, const Mean& mean) {
  for (int x = 0; x < count; ++x) std::memcpy(at + 2 * x, mean, 2);
}

void fillRun(const MosaicPlane& plane, std::uint8_t* at, int count, const Mean& mean) {
  switch (plane.channels) {
    case 1: std::memset(at, mean[0], static_cast<std::size_t>(count)); return;
    case 2: return fillPairs(at, count, mean);
    default: return fillPixels(at, count, mean);
  }
}

// Writes the means along the first row of the block row.
void fillFirstRow(const MosaicPlane& plane, BlockRange rows, const std::uint32_t* sums) {
  std::uint8_t* const row = plane.row(rows.first);
  for (int block = 0; block < plane.across.count(); ++block) {
    const BlockRange columns = plane.across.at(block);
    const auto samples = static_cast<std::uint32_t>(columns.count * rows.count);
    if (samples == 0) continue;
    Mean mean = {};
    for (int c = 0; c < plane.channels; ++c) {
      mean[c] = static_cast<std::uint8_t>(sums[block * plane.channels + c] / samples);
    }
    fillRun(plane, row + columns.first * plane.channels, columns.count, mean);
  }
}

// Without gaps the first row is copied in one piece. With gaps (odd blocks on chroma) each block
// copies as many bytes as it has luma columns: one more than its pairs fill, so the first byte of
// the gap behind it takes the first row's value too.
void copyFirstRow(const MosaicPlane& plane, BlockRange rows) {
  const std::uint8_t* const first = plane.row(rows.first);
  for (int y = rows.first + 1; y < rows.end(); ++y) {
    std::uint8_t* const row = plane.row(y);
    if (!plane.across.leavesGaps()) {
      std::memcpy(row, first, static_cast<std::size_t>(plane.rowBytes()));
      continue;
    }
    for (int block = 0; block < plane.across.count(); ++block) {
      const BlockRange columns = plane.across.at(block);
      if (columns.count == 0) continue;
      const int at = columns.first * plane.channels;
      std::memcpy(row + at, first + at, static_cast<std::size_t>(plane.across.pixelsOf(block)));
    }
  }
}

}  // namespace

void sumBlockRow(const MosaicPlane& plane, int blockRow, BlockRange rows, std::uint16_t* columnSums,
                 std::uint32_t* sums) {
  std::fill_n(sums, plane.sumsPerBlockRow(), 0u);
  const BlockRange own = blockRowWithin(plane, blockRow, rows);
  for (int y = own.first; y < own.end(); y += kMostSummedRows) {
    const int count = std::min(kMostSummedRows, own.end() - y);
    kColumnSums()(plane.row(y), plane.strideBytes, count, plane.rowBytes(), columnSums);
    addColumns(plane, columnSums, sums);
  }
}

void fillBlockRow(const MosaicPlane& plane, int blockRow, const std::uint32_t* sums) {
  const BlockRange rows = plane.down.at(blockRow);
  fillFirstRow(plane, rows, sums);
  copyFirstRow(plane, rows);
}

}  // namespace lumora
