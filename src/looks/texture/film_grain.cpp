// The grain of an aged film. Single precision throughout, each product rounded before it is added:
// every byte of the result depends on it.
#include "looks/texture/film_ageing.h"
#include "looks/colour/walk.h"

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
  return hn::ConvertTo(df32, hn::BitCast(di32, hn::And(lanes, hn::Set(du32, 0xFF))));
}

// Truncates 0..255 and puts it in byte k of every lane.
template <int k>
HWY_INLINE V8 inQuarter(VF32 value) {
  return hn::BitCast(d8, hn::ShiftLeft<8 * k>(hn::ConvertTo(di32, value)));
}

struct GrainedQuarter {
  VF32 grain;          // already weighted
  VF32 pictureWeight;  // for the picture's channels

  HWY_INLINE GrainedQuarter(VF32 grey, VF32 texel) {
    const auto isDark = hn::Lt(grey, hn::Set(df32, kDarkBelow));
    const VF32 weight =
        hn::IfThenElse(isDark, hn::Set(df32, kDark.grain), hn::Set(df32, kBright.grain));
    grain = hn::Mul(weight, texel);
    pictureWeight =
        hn::IfThenElse(isDark, hn::Set(df32, kDark.picture), hn::Set(df32, kBright.picture));
  }

  HWY_INLINE VF32 operator()(VF32 channel) const {
    return hn::Add(grain, hn::Mul(pictureWeight, channel));
  }
};

HWY_INLINE VF32 greyOf(VF32 r, VF32 g, VF32 b) {
  const VF32 greenBlue =
      hn::Add(hn::Mul(hn::Set(df32, kGreenWeight), g), hn::Mul(hn::Set(df32, kBlueWeight), b));
  return hn::Add(greenBlue, hn::Mul(hn::Set(df32, kRedWeight), r));
}

HWY_INLINE Rgb operator|(const Rgb& a, const Rgb& b) {
  return {hn::Or(a.r, b.r), hn::Or(a.g, b.g), hn::Or(a.b, b.b)};
}

struct RgbaGrainStep {
  using Texture = GreyTexture;

  template <int k>
  static HWY_INLINE Rgb grained(const Pixels<GreyTexture>& p) {
    const VF32 r = quarter<k>(p.colour.r), g = quarter<k>(p.colour.g), b = quarter<k>(p.colour.b);
    const GrainedQuarter grain(greyOf(r, g, b), quarter<k>(p.texels));
    return {inQuarter<k>(grain(r)), inQuarter<k>(grain(g)), inQuarter<k>(grain(b))};
  }

  HWY_INLINE Rgb operator()(const Pixels<GreyTexture>& p) const {
    return (grained<0>(p) | grained<1>(p)) | (grained<2>(p) | grained<3>(p));
  }
};

struct LumaGrainStep {
  template <int k>
  static HWY_INLINE V8 grained(V8 luma, V8 texels) {
    const VF32 y = quarter<k>(luma);
    return inQuarter<k>(GrainedQuarter(y, quarter<k>(texels))(y));
  }

  HWY_INLINE V8 operator()(V8 luma, V8 texels) const {
    return hn::Or(hn::Or(grained<0>(luma, texels), grained<1>(luma, texels)),
                  hn::Or(grained<2>(luma, texels), grained<3>(luma, texels)));
  }
};

void addGrain(const Picture& picture, const std::uint8_t* grain) {
  LookJob job{};
  job.widthPixels = picture.widthPixels;
  job.rows = picture.heightRows;
  job.strideBytes = picture.strideBytes;
  job.pixels = picture.data;
  job.texture = grain;
  if (picture.isRgba()) {
    walkRgba(job, RgbaGrainStep{});
  } else {
    walkLuma<GreyTexture>(job, LumaGrainStep{});
  }
}

}  // namespace

const GrainKernel kFilmGrain = addGrain;

}  // namespace lumora::HWY_NAMESPACE
