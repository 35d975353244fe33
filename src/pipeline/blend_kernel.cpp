#include "pipeline/blend_kernel.h"

#include "looks/colour/walk.h"
#include "pipeline/strength_blend.h"

namespace lumora::HWY_NAMESPACE {
namespace {

struct Weights {
  VI16 copy;
  VI16 filtered;
};

// The weights sum to 16, so the sum is at most 4080; + 8 rounds halves up.
HWY_INLINE VI16 mix(VI16 copy, VI16 filtered, const Weights& w) {
  const VI16 sum = hn::Add(hn::Mul(copy, w.copy), hn::Mul(filtered, w.filtered));
  return hn::ShiftRight<4>(hn::Add(sum, hn::Set(di16, 8)));
}

HWY_INLINE V8 mix(V8 copy, V8 filtered, const Weights& w) {
  const EvenOdd c = split(copy), f = split(filtered);
  return join(mix(c.even, f.even, w), mix(c.odd, f.odd, w));
}

void blend(const std::uint8_t* copy, std::uint8_t* picture, std::size_t bytes, int weight) {
  const Weights w{hn::Set(di16, static_cast<std::int16_t>(kFullWeight - weight)),
                  hn::Set(di16, static_cast<std::int16_t>(weight))};
  TailBlock<kLanes8, 1> copyTail, pictureTail;
  for (std::size_t i = 0; i < bytes; i += kLanes8) {
    const bool isTail = bytes - i < kLanes8;
    const std::uint8_t* from = copy + i;
    std::uint8_t* to = picture + i;
    if (isTail) {
      const int left = static_cast<int>(bytes - i);
      from = copyTail.load(from, left);
      to = pictureTail.load(to, left);
    }
    hn::StoreU(mix(hn::LoadU(d8, from), hn::LoadU(d8, to), w), d8, to);
    if (isTail) pictureTail.store(picture + i);
  }
}

}  // namespace

const BlendKernel kBlend = blend;

}  // namespace lumora::HWY_NAMESPACE
