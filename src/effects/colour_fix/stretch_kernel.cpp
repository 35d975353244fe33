#include "effects/colour_fix/stretch_kernel.h"

#include "hwy/highway.h"

namespace lumora::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// Eight places lie within sixteen samples: 7 steps and a fraction are less than 15 samples. Their
// places, counted from the first of the sixteen, fit 16 bits with their fractions.
void stretchRow(const std::uint8_t* samples, std::int64_t count, std::uint32_t step, int places,
                std::uint8_t* out) {
  const hn::FixedTag<std::uint8_t, 16> d8;
  const hn::FixedTag<std::uint16_t, 8> d16;
  const hn::FixedTag<std::int16_t, 8> di16;
  const hn::Half<decltype(d8)> dHalf8;
  const auto steps = hn::Mul(hn::Iota(d16, 0), hn::Set(d16, static_cast<std::uint16_t>(step)));
  const auto last = static_cast<std::uint32_t>(count - kShortestKernelRow);
  std::uint32_t place = 0;
  for (int x = 0; x + 8 <= places; x += 8, place += 8 * step) {
    const std::uint32_t wanted = place >> kStretchStepBits;
    const std::uint32_t first = wanted < last ? wanted : last;
    const auto start = static_cast<std::uint16_t>(place - (first << kStretchStepBits));
    const auto index = hn::ShiftRight<kStretchStepBits>(hn::Add(steps, hn::Set(d16, start)));
    // One sample to a lane; the index of its upper byte gives 0.
    const auto lanes = hn::BitCast(d8, hn::Or(index, hn::Set(d16, 0x8000)));
    const auto found = hn::TableLookupBytesOr0(hn::LoadU(d8, samples + first), lanes);
    hn::StoreU(hn::DemoteTo(dHalf8, hn::BitCast(di16, found)), dHalf8, out + x);
  }
}

}  // namespace

const StretchRow kStretchRow = stretchRow;

}  // namespace lumora::HWY_NAMESPACE
