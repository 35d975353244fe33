#include "pixels/blend_kernel.h"

#include "pixels/mix.h"
#include "pixels/row_walk.h"

namespace lumora::HWY_NAMESPACE {
namespace {

void blend(const std::uint8_t* copy, std::uint8_t* picture, std::size_t bytes, int weight) {
  const MixByWeight mix(weight);
  walkRow<kLanes8>(
      static_cast<std::ptrdiff_t>(bytes),
      [&](std::ptrdiff_t, const std::uint8_t* from, std::uint8_t* to) {
        hn::StoreU(mix(hn::LoadU(d8, from), hn::LoadU(d8, to)), d8, to);
      },
      Reads<1>{copy}, Changes<1>{picture});
}

}  // namespace

const BlendKernel kBlend = blend;

}  // namespace lumora::HWY_NAMESPACE
