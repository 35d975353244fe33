#include "effects/mosaic/mosaic_blocks.h"

#include <cstring>

#include "effects/mosaic/mosaic_kernel.h"
#include "lumora/filters.h"
#include "pixels/blend_kernel.h"

namespace lumora {
namespace {

// One 32-bit sum per block and channel: at most 255 x 2000 x 2000. A block row has at most 2000 / 8
// blocks; on one of 4 channels these are 4 kB.
constexpr int kMostRowBytes = LUMORA_LONGEST_MOSAIC_SIDE * 4;
constexpr int kMostSums = LUMORA_LONGEST_MOSAIC_SIDE / LUMORA_SHORTEST_MOSAIC_SIDE * 4;
// One for every two blocks.
constexpr int kMostGaps = LUMORA_LONGEST_MOSAIC_SIDE / LUMORA_SHORTEST_MOSAIC_SIDE / 2 + 1;

// Rows are summed in strips of columns, whose sums take 8 kB of a worker's stack. A strip is whole
// pixels of every plane.
constexpr int kStripBytes = 4096;

// Adds the column sums of a strip to the sums of the blocks that have a part in it.
template <int kChannels>
void addColumns(const BlockAxis& across, BlockRange strip, const std::uint16_t* columnSums,
                std::uint32_t* sums) {
  for (int block = across.firstBlockNear(strip.first); block < across.count(); ++block) {
    const BlockRange columns = across.at(block);
    if (columns.first >= strip.end()) break;
    const int first = std::max(columns.first, strip.first);
    const int count = std::min(columns.end(), strip.end()) - first;
    const std::uint16_t* at = columnSums + (first - strip.first) * kChannels;
    std::uint32_t total[kChannels] = {};
    for (int x = 0; x < count; ++x, at += kChannels) {
      for (int c = 0; c < kChannels; ++c) total[c] += at[c];
    }
    for (int c = 0; c < kChannels; ++c) sums[block * kChannels + c] += total[c];
  }
}

void addColumns(const MosaicPlane& plane, BlockRange strip, const std::uint16_t* columnSums,
                std::uint32_t* sums) {
  switch (plane.channels) {
    case 1: return addColumns<1>(plane.across, strip, columnSums, sums);
    case 2: return addColumns<2>(plane.across, strip, columnSums, sums);
    default: return addColumns<4>(plane.across, strip, columnSums, sums);
  }
}

void sumBlocks(const MosaicPlane& plane, BlockRange rows, std::uint32_t* sums) {
  std::uint16_t columnSums[kStripBytes];
  for (int y = rows.first; y < rows.end(); y += kMostSummedRows) {
    const int count = std::min(kMostSummedRows, rows.end() - y);
    for (int first = 0; first < plane.rowBytes(); first += kStripBytes) {
      const int bytes = std::min(kStripBytes, plane.rowBytes() - first);
      kColumnSums()(plane.row(y) + first, plane.strideBytes, count, bytes, columnSums);
      addColumns(plane, {first / plane.channels, bytes / plane.channels}, columnSums, sums);
    }
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

// Writes the means of the block row along a row.
void fillRow(const MosaicPlane& plane, BlockRange rows, const std::uint32_t* sums,
             std::uint8_t* row) {
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

void mixInto(std::uint8_t* samples, const std::uint8_t* filled, int bytes, int weight) {
  if (weight == LUMORA_FULL_STRENGTH) {
    std::memcpy(samples, filled, static_cast<std::size_t>(bytes));
  } else {
    kBlend()(filled, samples, static_cast<std::size_t>(bytes), LUMORA_FULL_STRENGTH - weight);
  }
}

// The bytes of a row that keep their value: odd blocks on chroma take as many bytes as they have
// luma columns, one more than their pairs fill, which is the first one of the gap behind the block
// or of the next block. The rest of a gap, one byte for every two blocks, stays.
class Gaps {
 public:
  explicit Gaps(const MosaicPlane& plane) {
    if (!plane.across.leavesGaps()) return;
    int end = 0;
    for (int block = 0; block < plane.across.count(); ++block) {
      const int first = plane.across.at(block).first * plane.channels;
      addUpTo(first, end);
      end = first + plane.across.pixelsOf(block);
    }
    addUpTo(plane.rowBytes(), end);
  }

  // Calls use(byte, k) for the k-th of them.
  template <class Use>
  void forEachIn(std::uint8_t* row, const Use& use) const {
    for (int k = 0; k < count_; ++k) use(row[places_[k]], k);
  }

 private:
  void addUpTo(int first, int place) {
    while (place < first) places_[count_++] = place++;
  }

  int places_[kMostGaps];
  int count_ = 0;
};

void writeRow(const MosaicPlane& plane, const Gaps& gaps, const std::uint8_t* filled,
              std::uint8_t* row, int weight) {
  std::uint8_t kept[kMostGaps];
  gaps.forEachIn(row, [&](std::uint8_t byte, int k) { kept[k] = byte; });
  mixInto(row, filled, plane.rowBytes(), weight);
  gaps.forEachIn(row, [&](std::uint8_t& byte, int k) { byte = kept[k]; });
}

// All rows of a block row get those bytes of the first one that are not filled.
void writeRows(const MosaicPlane& plane, BlockRange rows, const std::uint32_t* sums, int weight) {
  const bool isMixed = weight < LUMORA_FULL_STRENGTH;
  std::uint8_t toMix[kMostRowBytes];
  std::uint8_t* filled = plane.row(rows.first);
  if (isMixed) {
    std::memcpy(toMix, filled, static_cast<std::size_t>(plane.rowBytes()));
    filled = toMix;
  }
  fillRow(plane, rows, sums, filled);
  const Gaps gaps(plane);
  for (int y = isMixed ? rows.first : rows.first + 1; y < rows.end(); ++y) {
    writeRow(plane, gaps, filled, plane.row(y), weight);
  }
}

}  // namespace

void pixelateBlockRow(const MosaicPlane& plane, int blockRow, int weight) {
  const BlockRange rows = plane.down.at(blockRow);
  if (rows.count == 0) return;
  std::uint32_t sums[kMostSums];
  std::fill_n(sums, plane.across.count() * plane.channels, 0u);
  sumBlocks(plane, rows, sums);
  writeRows(plane, rows, sums, weight);
}

}  // namespace lumora
