#include "resources/resample_kernel.h"

#include <hwy/highway.h>

namespace lumora {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// The source bytes of as many neighbouring blocks as the vector holds.
template <class D>
HWY_INLINE hn::Vec<D> loadSources(D d, const std::uint8_t* src, const std::uint16_t* base) {
  if constexpr (hn::MaxLanes(D()) == kGatherBlockBytes) {
    return hn::LoadU(d, src + base[0]);
  } else {
    const hn::Half<D> half;
    constexpr std::size_t kHalfBlocks = hn::MaxLanes(D()) / 2 / kGatherBlockBytes;
    return hn::Combine(d, loadSources(half, src, base + kHalfBlocks), loadSources(half, src, base));
  }
}

// Makes the bytes of the blocks from k on at `to`. A lookup stays within its block on every
// processor.
template <class D>
HWY_INLINE void gatherBlocks(D d, const BlockGather& gather, std::size_t k, const std::uint8_t* src,
                             std::uint8_t* to) {
  const auto picks = hn::LoadU(d, gather.pick + k * kGatherBlockBytes);
  hn::StoreU(hn::TableLookupBytes(loadSources(d, src, gather.base + k), picks), d, to);
}

void gatherRow(const BlockGather& gather, const std::uint8_t* src, std::uint8_t* dst) {
  const hn::ScalableTag<std::uint8_t> several;
  const hn::FixedTag<std::uint8_t, kGatherBlockBytes> one;
  constexpr std::size_t kBlocksAtOnce = hn::MaxLanes(several) / kGatherBlockBytes;
  const std::size_t last = gather.blocks - 1;
  std::size_t k = 0;
  for (; k + kBlocksAtOnce <= last; k += kBlocksAtOnce) {
    gatherBlocks(several, gather, k, src, dst + k * kGatherBlockBytes);
  }
  for (; k < last; ++k) gatherBlocks(one, gather, k, src, dst + k * kGatherBlockBytes);
  gatherBlocks(one, gather, last, src, dst + gather.bytes - kGatherBlockBytes);
}

}  // namespace

const ResampleKernel resampleKernel = {&gatherRow};

}  // namespace HWY_NAMESPACE
}  // namespace lumora
