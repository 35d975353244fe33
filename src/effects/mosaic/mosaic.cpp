#include "effects/mosaic/mosaic.h"

#include <array>
#include <cassert>

#include "effects/mosaic/mosaic_blocks.h"
#include "platform/host_block.h"
#include "platform/log.h"
#include "platform/stripe_runner.h"

namespace lumora {
namespace {

struct Sides {
  int width;
  int height;
};

// The rectangle on the planes of a picture: one for RGBA, luma and chroma for NV pictures. All have
// the same count of blocks.
struct Planes {
  std::array<MosaicPlane, 2> plane;
  int count;
  const MosaicPlane* begin() const { return plane.data(); }
  const MosaicPlane* end() const { return plane.data() + count; }
  int blockRows() const { return plane[0].down.count(); }
};

Planes planesOf(const Picture& picture, const MosaicRect& rect, Sides sides, int edge) {
  const int channels = picture.isRgba() ? 4 : 1;
  const MosaicPlane full{picture.row(rect.top) + std::ptrdiff_t{rect.left} * channels,
                         picture.strideBytes, channels, BlockAxis(sides.width, edge, 1),
                         BlockAxis(sides.height, edge, 1)};
  if (picture.isRgba()) return {{full, full}, 1};
  // The pair of column x starts at byte x, rounded down to even.
  const MosaicPlane chroma{
      picture.chroma() + rect.top / 2 * picture.strideBytes + rect.left / 2 * 2,
      picture.strideBytes, 2, BlockAxis(sides.width, edge, 2), BlockAxis(sides.height, edge, 2)};
  return {{full, chroma}, 2};
}

MosaicRect ordered(const MosaicRect& rect) {
  return {std::min(rect.left, rect.right), std::min(rect.top, rect.bottom),
          std::max(rect.left, rect.right), std::max(rect.top, rect.bottom)};
}

std::uint64_t tableBytes(const Picture& picture, Sides sides) {
  const auto w = static_cast<std::uint64_t>(sides.width);
  const auto h = static_cast<std::uint64_t>(sides.height);
  const std::uint64_t full = (w + 1) * (h + 1);
  return 4 * (picture.isRgba() ? 3 * full : full + 2 * (w / 2 + 1) * (h / 2 + 1));
}

std::uint64_t planeBytes(const Picture& picture, Sides sides) {
  const auto samples =
      static_cast<std::uint64_t>(sides.width) * static_cast<unsigned>(sides.height);
  return picture.isRgba() ? 3 * samples : samples * 3 / 2;
}

// Hosts reckon with requests of the size of summed-area tables and sample planes of the rectangle.
// Sums by block need neither: a refusal is logged, and keeps the mosaic on the calling thread.
bool obtainsMemory(const Picture& picture, Sides sides, const FilterAllocator& allocator,
                   Threads threads) {
  const bool roomy = picture.isRgba() && threads == Threads::kCaller;
  const std::uint64_t slack = roomy ? 2 * kBlockAlignment : kBlockAlignment;
  const HostBlock tables(allocator, tableBytes(picture, sides), slack);
  if (tables && HostBlock(allocator, planeBytes(picture, sides), slack)) return true;
  logError("[%s] can't malloc enough memory!\n");
  return false;
}

void pixelate(const Planes& planes, const Stripe& blockRows, int weight) {
  for (const MosaicPlane& plane : planes) {
    for (std::int64_t k = 0; k < blockRows.count; ++k) {
      pixelateBlockRow(plane, static_cast<int>(blockRows.first + k), weight);
    }
  }
}

}  // namespace

void FilterMosaic(const Picture& picture, MosaicRect rect, int mosaicSize, int weight,
                  const FilterAllocator& allocator, Threads threads) {
  rect = ordered(rect);
  const Sides sides{rect.right - rect.left, rect.bottom - rect.top};
  assert(sides.width % 2 == 0 && sides.height % 2 == 0 && rect.left % 2 == 0 && rect.top % 2 == 0);
  assert(mosaicSize >= LUMORA_SHORTEST_MOSAIC_SIDE &&
         mosaicSize <= std::min(sides.width, sides.height));
  assert(std::max(sides.width, sides.height) <= LUMORA_LONGEST_MOSAIC_SIDE);

  const Planes planes = planesOf(picture, rect, sides, mosaicSize);
  const bool granted = obtainsMemory(picture, sides, allocator, threads);
  std::array<bool, kStripeCount> isDone{};
  const Status status = overStripes(granted ? threads : Threads::kCaller, planes.blockRows(),
                                    splitRows, [&](const Stripe& blockRows, int k) {
                                      pixelate(planes, blockRows, weight);
                                      isDone[static_cast<std::size_t>(k)] = true;
                                    });
  if (status == Status::kOk) return;
  logError("[%s] IntegralMat_multi return error!\n");
  const Stripes stripes = splitRows(planes.blockRows());
  for (std::size_t k = 0; k < kStripeCount; ++k) {
    if (!isDone[k]) pixelate(planes, stripes[k], weight);
  }
}

}  // namespace lumora
