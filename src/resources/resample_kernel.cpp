#include "resources/resample_kernel.h"

#include <hwy/highway.h>

namespace lumora {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

void gatherRow(const BlockGather& gather, const std::uint8_t* src, std::uint8_t* dst) {
  // Lookups reach 16 bytes far on every processor, so wider vectors would not help.
  const hn::FixedTag<std::uint8_t, kGatherBlockBytes> d;
  const std::uint16_t* base = gather.base;
  const std::uint8_t* pick = gather.pick;
  const std::size_t last = gather.blocks - 1;
  for (std::size_t k = 0; k < last; ++k) {
    const auto source = hn::LoadU(d, src + base[k]);
    hn::StoreU(hn::TableLookupBytes(source, hn::LoadU(d, pick + k * kGatherBlockBytes)), d,
               dst + k * kGatherBlockBytes);
  }
  const auto source = hn::LoadU(d, src + base[last]);
  hn::StoreU(hn::TableLookupBytes(source, hn::LoadU(d, pick + last * kGatherBlockBytes)), d,
             dst + gather.bytes - kGatherBlockBytes);
}

}  // namespace

const ResampleKernel resampleKernel = {&gatherRow};

}  // namespace HWY_NAMESPACE
}  // namespace lumora
