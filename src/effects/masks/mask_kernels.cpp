#include "effects/masks/mask_kernels.h"

#include "pixels/row_walk.h"

namespace lumora::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using DI32 = hn::ScalableTag<std::int32_t>;
using DF = hn::Rebind<float, DI32>;
using DBytes = hn::Rebind<std::uint8_t, DI32>;
using VI32 = hn::Vec<DI32>;
using VF = hn::Vec<DF>;
inline constexpr DI32 di32{};
inline constexpr DF df{};
inline constexpr DBytes dBytes{};
constexpr int kLanes = static_cast<int>(hn::MaxLanes(di32));

// 32-bit NEON has only an estimate of the square root; its scalar unit has the exact one.
HWY_INLINE VF squareRoot(VF v) {
#if HWY_ARCH_ARM_V7
  HWY_ALIGN float lanes[kLanes];
  hn::Store(v, df, lanes);
  for (float& lane : lanes) lane = __builtin_sqrtf(lane);
  return hn::Load(df, lanes);
#else
  return hn::Sqrt(v);
#endif
}

// Fills `count` bytes, valueAt giving the values of the lanes in `places`: first, first + 1, ...
template <class ValueAt>
HWY_INLINE void fill(std::uint8_t* out, int count, std::int32_t first, const ValueAt& valueAt) {
  const VI32 next = hn::Set(di32, kLanes);
  VI32 places = hn::Iota(di32, first);
  walkRow<4 * kLanes>(
      count,
      [&](std::ptrdiff_t, std::uint8_t* at) {
        for (int i = 0; i < 4; ++i) {
          hn::StoreU(hn::DemoteTo(dBytes, valueAt(places)), dBytes, at + i * kLanes);
          places = hn::Add(places, next);
        }
      },
      Writes<1>{out});
}

struct RingValue {
  VI32 dySquared;
  VI32 outerRadius;
  VI32 slope;

  // Within the ring the product is at most 255 x 2048.
  HWY_INLINE VI32 operator()(VI32 dx) const {
    const VI32 sum = hn::Add(hn::Mul(dx, dx), dySquared);
    const VI32 distance = hn::ConvertTo(di32, squareRoot(hn::ConvertTo(df, sum)));
    const VI32 depth = hn::Mul(hn::Sub(outerRadius, distance), slope);
    return hn::Sub(hn::Set(di32, 255), hn::ShiftRight<11>(depth));
  }
};

struct RampValue {
  VF base;
  VF step;

  HWY_INLINE VI32 operator()(VI32 place) const {
    return hn::ConvertTo(di32, hn::Add(base, hn::Mul(hn::ConvertTo(df, place), step)));
  }
};

void fillRing(const RingRun& run) {
  const RingValue value{hn::Set(di32, run.dySquared), hn::Set(di32, run.outerRadius),
                        hn::Set(di32, run.slope)};
  fill(run.out, run.count, run.dx, value);
}

void fillRamp(const RampRun& run) {
  fill(run.out, run.count, run.first, RampValue{hn::Set(df, run.base), hn::Set(df, run.step)});
}

}  // namespace

const MaskKernels kMask = {fillRing, fillRamp};

}  // namespace lumora::HWY_NAMESPACE
