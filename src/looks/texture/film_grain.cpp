// The grain of an aged film. Single precision throughout, each product rounded before it is added:
// every byte of the result depends on it.
#include "looks/texture/film_ageing.h"
#include "pixels/walk.h"

namespace lumora::HWY_NAMESPACE {
namespace {

using DI32 = hn::Repartition<std::int32_t, D8>;
using DU32 = hn::Repartition<std::uint32_t, D8>;
using DF32 = hn::Repartition<float, D8>;
using VF32 = hn::Vec<DF32>;

constexpr DI32 di32{};
constexpr DU32 du32{};
constexpr DF32 df32{};

// Just below 0.59: a pixel (24, 24, 24) has grey 23.999998 and counts as dark.
constexpr float kGreenWeight = 0x1.2e1478p-1f;
constexpr float kBlueWeight = 0.11f;
constexpr float kRedWeight = 0.3f;
constexpr float kDarkBelow = 24.0f;

struct Mix {
  float grain;
  float picture;
};
constexpr Mix kBright{0.35f, 0.65f};
// The picture's weight is just below 0.2: 255 gives 50.
constexpr Mix kDark{0.8f, 0x1.999998p-3f};

// Byte k of every 32-bit lane as a float.
template <int k>
HWY_INLINE VF32 quarter(V8 bytes) {
  const auto lanes = hn::ShiftRight<8 * k>(hn::BitCast(du32, bytes));
  const auto byte = k == 3 ? lanes : hn::And(lanes, hn::Set(du32, 0xFF));
  return hn::ConvertTo(df32, hn::BitCast(di32, byte));
}

// Of 0..255. Highway's own conversion spends as much again on values outside the integers, and so
// do engines of WebAssembly: there 2^23 is added, which leaves the integer in the lowest bits.
HWY_INLINE hn::Vec<DI32> truncated(VF32 value) {
#if HWY_ARCH_X86
  return hn::Vec<DI32>{LUMORA_X86_INTRINSIC(cvttps_epi32)(value.raw)};
#elif HWY_TARGET == HWY_WASM
  const VF32 exponent = hn::Set(df32, 0x1p23f);
  return hn::BitCast(di32, hn::Xor(hn::Add(hn::Trunc(value), exponent), exponent));
#else
  return hn::ConvertTo(di32, value);
#endif
}

// Truncates 0..255 and puts it in byte k of every lane.
template <int k>
HWY_INLINE V8 inQuarter(VF32 value) {
  return hn::BitCast(d8, hn::ShiftLeft<8 * k>(truncated(value)));
}

HWY_INLINE VF32 either(VF32 mask, float set, float clear) {
  const VF32 difference = hn::Xor(hn::Set(df32, set), hn::Set(df32, clear));
  return hn::Xor(hn::Set(df32, clear), hn::And(mask, difference));
}

// How the grain mixes with the channels of a pixel, by the pixel's grey.
struct GrainMix {
  VF32 grain;  // already weighted
  VF32 pictureWeight;

  HWY_INLINE GrainMix(VF32 grey, VF32 texel) {
    const VF32 isDark = hn::VecFromMask(df32, hn::Lt(grey, hn::Set(df32, kDarkBelow)));
    grain = hn::Mul(either(isDark, kDark.grain, kBright.grain), texel);
    pictureWeight = either(isDark, kDark.picture, kBright.picture);
  }
  // Of pixels that are known not to be dark.
  HWY_INLINE explicit GrainMix(VF32 texel)
      : grain(hn::Mul(hn::Set(df32, kBright.grain), texel)),
        pictureWeight(hn::Set(df32, kBright.picture)) {}

  HWY_INLINE VF32 operator()(VF32 channel) const {
    return hn::Add(grain, hn::Mul(pictureWeight, channel));
  }
};

// Green and blue first, then red.
HWY_INLINE VF32 greyOf(VF32 r, VF32 g, VF32 b) {
  const VF32 green = hn::Mul(hn::Set(df32, kGreenWeight), g);
  const VF32 greenBlue = hn::Add(green, hn::Mul(hn::Set(df32, kBlueWeight), b));
  return hn::Add(greenBlue, hn::Mul(hn::Set(df32, kRedWeight), r));
}

// Interleaved pixels, one in every 32-bit lane.
struct RgbaGrain {
  static constexpr int kPixelBytes = 4;

  // A channel above the highest that a dark pixel can have, 24 by its weight, tells that a pixel is
  // not dark. True where nothing tells it.
  static HWY_INLINE bool mayBeDark(V8 pixels) {
    const V8 highest = hn::BitCast(d8, hn::Set(du32, 0xFFDA2850));  // 80, 40, 218, any alpha
    const auto beyond = hn::BitCast(du32, hn::SaturatedSub(pixels, highest));
    return !hn::AllFalse(du32, hn::Eq(beyond, hn::Zero(du32)));
  }

  template <bool kIsBright>
  static HWY_INLINE V8 grained(V8 pixels, const std::uint8_t* texels) {
    const auto bytes = hn::LoadU(hn::Rebind<std::uint8_t, DI32>(), texels);
    const VF32 texel = hn::ConvertTo(df32, hn::PromoteTo(di32, bytes));
    const VF32 r = quarter<0>(pixels), g = quarter<1>(pixels), b = quarter<2>(pixels);
    const GrainMix mix = kIsBright ? GrainMix(texel) : GrainMix(greyOf(r, g, b), texel);
    const V8 redGreen = hn::Or(inQuarter<0>(mix(r)), inQuarter<1>(mix(g)));
    const V8 alpha = hn::And(pixels, hn::BitCast(d8, hn::Set(du32, 0xFF000000)));
    return hn::Or(hn::Or(redGreen, inQuarter<2>(mix(b))), alpha);
  }
};

struct LumaGrain {
  static constexpr int kPixelBytes = 1;

  static HWY_INLINE bool mayBeDark(V8 luma) {
    return !hn::AllFalse(d8, hn::Gt(hn::Set(d8, static_cast<std::uint8_t>(kDarkBelow)), luma));
  }

  template <bool kIsBright, int k>
  static HWY_INLINE V8 grainedQuarter(V8 luma, V8 texels) {
    const VF32 y = quarter<k>(luma), texel = quarter<k>(texels);
    return inQuarter<k>((kIsBright ? GrainMix(texel) : GrainMix(y, texel))(y));
  }

  template <bool kIsBright>
  static HWY_INLINE V8 grained(V8 luma, const std::uint8_t* at) {
    const V8 texels = hn::LoadU(d8, at);
    return hn::Or(hn::Or(grainedQuarter<kIsBright, 0>(luma, texels),
                         grainedQuarter<kIsBright, 1>(luma, texels)),
                  hn::Or(grainedQuarter<kIsBright, 2>(luma, texels),
                         grainedQuarter<kIsBright, 3>(luma, texels)));
  }
};

// Few pixels are dark; the others are spared their grey.
template <class Grain>
HWY_INLINE V8 grained(V8 bytes, const std::uint8_t* texels) {
  if (Grain::mayBeDark(bytes)) return Grain::template grained<false>(bytes, texels);
  return Grain::template grained<true>(bytes, texels);
}

template <class Grain>
HWY_INLINE void addGrain(const PixelRows& rows) {
  constexpr int kVectors = 4, kPixels = kLanes8 / Grain::kPixelBytes;
  for (int y = 0; y < rows.rows; ++y) {
    walkRow<kVectors * kPixels>(
        rows.widthPixels,
        [&](std::ptrdiff_t, std::uint8_t* at, const std::uint8_t* texels) {
          for (int i = 0; i < kVectors; ++i, at += kLanes8, texels += kPixels) {
            hn::StoreU(grained<Grain>(hn::LoadU(d8, at), texels), d8, at);
          }
        },
        Changes<Grain::kPixelBytes>{rows.pixels + y * rows.strideBytes},
        Reads<1>{textureRow<GreyTexture>(rows, y)});
  }
}

void addGrainTo(const PixelRows& rows) {
  if (rows.format == PixelFormat::kRgba) {
    addGrain<RgbaGrain>(rows);
  } else {
    addGrain<LumaGrain>(rows);
  }
}

}  // namespace

const GrainKernel kFilmGrain = addGrainTo;

}  // namespace lumora::HWY_NAMESPACE
