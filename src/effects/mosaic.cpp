#include "effects/mosaic.h"

#include <array>
#include <cassert>

#include "effects/mosaic_blocks.h"
#include "pipeline/stripe_runner.h"
#include "platform/host_block.h"
#include "platform/log.h"

namespace lumora {
namespace {

// The rectangle on the planes of a picture: one for RGBA, luma and chroma for NV pictures.
struct Planes {
  std::array<MosaicPlane, 2> plane;
  int count;
  const MosaicPlane* begin() const { return plane.data(); }
  const MosaicPlane* end() const { return plane.data() + count; }
};

struct Sides {
  int width;
  int height;
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

// Working memory. Both blocks are requested at the size of summed-area tables and sample planes of
// the rectangle, which hosts reckon with; sums by block need and touch only their beginning.
struct WorkingMemory {
  HostBlock columnSums;
  HostBlock blockSums;

  // One 16-bit entry per stripe and byte of a row. For each column that is 4 x 4 x 2 bytes on RGBA
  // and 4 x 2 on NV pictures; the tables, at least nine rows high, have more than 9 x 12 and 9 x 4.
  std::uint16_t* columnSumsOf(int stripe, const Planes& planes) const {
    const MosaicPlane& widest = planes.plane[0];
    return reinterpret_cast<std::uint16_t*>(columnSums.data()) + stripe * widest.rowBytes();
  }

  // A stripe's last block row may be the next one's first, so the sums of (blockRow, stripe) stand
  // in row blockRow + stripe: no two share one. Along an even side of 8 or more pixels there are at
  // most a fifth as many blocks, so (height / 5 + 3) x (width / 5) x 16 bytes on RGBA, and 12 on NV
  // pictures, fit the 3 (1.5) bytes a pixel of the planes from 5 (8) rows on.
  std::uint32_t* blockSumsOf(const Planes& planes, const MosaicPlane& plane, int blockRow,
                             int stripe) const {
    auto* sums = reinterpret_cast<std::uint32_t*>(blockSums.data());
    for (const MosaicPlane* before = planes.begin(); before != &plane; ++before) {
      sums += (before->down.count() + kStripeCount - 1) * before->sumsPerBlockRow();
    }
    return sums + (blockRow + stripe) * plane.sumsPerBlockRow();
  }
};

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

Status obtain(WorkingMemory& memory, const Picture& picture, Sides sides,
              const FilterAllocator& allocator, Threads threads) {
  const bool roomy = picture.isRgba() && threads == Threads::kCaller;
  const std::uint64_t slack = roomy ? 2 * kBlockAlignment : kBlockAlignment;
  memory.columnSums = HostBlock(allocator, tableBytes(picture, sides), slack);
  if (memory.columnSums) {
    memory.blockSums = HostBlock(allocator, planeBytes(picture, sides), slack);
  }
  if (!memory.blockSums) {
    memory.columnSums.release();
    return fail(Status::kNoMemory, "[%s] can't malloc enough memory!\n");
  }
  return Status::kOk;
}

BlockRange shareOf(const MosaicPlane& plane, int stripe) {
  const Stripe share = splitRows(plane.down.samples())[stripe];
  return {static_cast<int>(share.first), static_cast<int>(share.count)};
}

struct SumJob {
  const Planes* planes;
  const WorkingMemory* memory;
  int stripe;
};

// One worker: the sums of its share of every plane's rows.
void sumShare(const SumJob& job) {
  std::uint16_t* const columnSums = job.memory->columnSumsOf(job.stripe, *job.planes);
  for (const MosaicPlane& plane : *job.planes) {
    const BlockRange share = shareOf(plane, job.stripe);
    for (int blockRow = 0; blockRow < plane.down.count(); ++blockRow) {
      if (blockRowWithin(plane, blockRow, share).count == 0) continue;
      sumBlockRow(plane, blockRow, share, columnSums,
                  job.memory->blockSumsOf(*job.planes, plane, blockRow, job.stripe));
    }
  }
}

// Adds what the stripes found in a block row, into the sums of the first of them.
const std::uint32_t* joinShares(const Planes& planes, const MosaicPlane& plane, int blockRow,
                                const WorkingMemory& memory) {
  std::uint32_t* total = nullptr;
  for (int stripe = 0; stripe < kStripeCount; ++stripe) {
    if (blockRowWithin(plane, blockRow, shareOf(plane, stripe)).count == 0) continue;
    std::uint32_t* const sums = memory.blockSumsOf(planes, plane, blockRow, stripe);
    if (total == nullptr) {
      total = sums;
    } else {
      for (int i = 0; i < plane.sumsPerBlockRow(); ++i) total[i] += sums[i];
    }
  }
  return total;
}

// The picture stays untouched until every worker has started.
Status IntegralMat_multi(const Planes& planes, const WorkingMemory& memory) {
  std::array<SumJob, kStripeCount> jobs;
  for (int k = 0; k < kStripeCount; ++k) jobs[k] = {&planes, &memory, k};
  return StripeRunner::run<SumJob>(sumShare, jobs);
}

Status mosaicOnFour(const Planes& planes, WorkingMemory& memory) {
  const Status status = IntegralMat_multi(planes, memory);
  if (status != Status::kOk) {
    memory.blockSums.release();
    memory.columnSums.release();
    return fail(status, "[%s] IntegralMat_multi return error!\n");
  }
  for (const MosaicPlane& plane : planes) {
    for (int blockRow = 0; blockRow < plane.down.count(); ++blockRow) {
      const std::uint32_t* const sums = joinShares(planes, plane, blockRow, memory);
      if (sums != nullptr) fillBlockRow(plane, blockRow, sums);
    }
  }
  return Status::kOk;
}

// One block row at a time: it is still in the cache when it is filled.
void mosaicOnCaller(const Planes& planes, const WorkingMemory& memory) {
  for (const MosaicPlane& plane : planes) {
    for (int blockRow = 0; blockRow < plane.down.count(); ++blockRow) {
      std::uint32_t* const sums = memory.blockSumsOf(planes, plane, blockRow, 0);
      sumBlockRow(plane, blockRow, {0, plane.down.samples()}, memory.columnSumsOf(0, planes), sums);
      fillBlockRow(plane, blockRow, sums);
    }
  }
}

}  // namespace

Status FilterMosaic(const Picture& picture, MosaicRect rect, int mosaicSize,
                    const FilterAllocator& allocator, Threads threads) {
  rect = ordered(rect);
  const Sides sides{rect.right - rect.left, rect.bottom - rect.top};
  assert(sides.width % 2 == 0 && sides.height % 2 == 0 && rect.left % 2 == 0 && rect.top % 2 == 0);
  assert(mosaicSize >= 8 && mosaicSize <= std::min(sides.width, sides.height));

  WorkingMemory memory;
  const Status obtained = obtain(memory, picture, sides, allocator, threads);
  if (obtained != Status::kOk) return obtained;
  const Planes planes = planesOf(picture, rect, sides, mosaicSize);
  if (threads == Threads::kFour) return mosaicOnFour(planes, memory);
  mosaicOnCaller(planes, memory);
  return Status::kOk;
}

}  // namespace lumora
