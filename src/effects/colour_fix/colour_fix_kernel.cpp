#include "effects/colour_fix/colour_fix_kernel.h"

#include "effects/colour_fix/hue_distance.h"
#include "pixels/walk.h"

namespace lumora::HWY_NAMESPACE {
namespace {

// (19 R + 38 G + 7 B) >> 6: unlike that of the looks this grey is not rounded.
HWY_INLINE EvenOdd truncatedGrey(const Rgb& c) {
  const EvenOdd sum =
      add(add(weightedHalves<19>(c.r), weightedHalves<38>(c.g)), weightedHalves<7>(c.b));
  return {hn::ShiftRight<6>(sum.even), hn::ShiftRight<6>(sum.odd)};
}

// (c (8192 - k) + grey k) >> 13 = c + ((8 (grey - c) k) >> 16), for k = 0..8192.
HWY_INLINE V8 fade(V8 c, const EvenOdd& grey8, const EvenOdd& k) {
  const EvenOdd c8 = weightedHalves<8>(c);
  const VI16 even = hn::MulHigh(hn::Sub(grey8.even, c8.even), k.even);
  const VI16 odd = hn::MulHigh(hn::Sub(grey8.odd, c8.odd), k.odd);
  return hn::Add(c, joinLowBytes({even, odd}));
}

// The mask is the texture.
template <class Mask>
class Fader {
 public:
  using Texture = Mask;
  // A vector of pixels between the two halves of its work.
  struct Started {
    Rgba pixels;
    HueDistance::Terms terms;
    typename Mask::Texels mask;
  };

  HWY_INLINE explicit Fader(const FadeRule& rule)
      : distance_(rule.hue),
        tolerance_(hn::Set(du16, rule.tolerance)),
        // Without tolerance there is no band: distance 1 is grey already.
        lastInBand_(hn::Set(di16, rule.tolerance > 0 ? rule.tolerance - 1 : 0)),
        step_(hn::Set(di16, static_cast<std::int16_t>(rule.step))) {}

  HWY_INLINE Started start(const Rgba& pixels, const std::uint8_t* mask) const {
    return {pixels, distance_.terms(pixels.colour), Mask::loadInRgbaOrder(mask)};
  }

  HWY_INLINE Rgba finish(const Started& pixels) const {
    const EvenOdd k = greyWeights(pixels);
    const Rgb& c = pixels.pixels.colour;
    const EvenOdd grey = truncatedGrey(c);
    const EvenOdd grey8{hn::ShiftLeft<3>(grey.even), hn::ShiftLeft<3>(grey.odd)};
    return {{fade(c.r, grey8, k), fade(c.g, grey8, k), fade(c.b, grey8, k)}, pixels.pixels.alpha};
  }

 private:
  static HWY_INLINE VI16 whole() { return hn::Set(di16, 8192); }

  HWY_INLINE EvenOdd greyWeights(const Started& pixels) const {
    const EvenOdd distance = distance_(pixels.terms);
    const EvenOdd k{greyWeight(distance.even), greyWeight(distance.odd)};
    if constexpr (Mask::kBytesPerPixel == 0) {
      return k;
    } else {
      const VI16 masked = hn::BitCast(di16, hn::VecFromMask(d8, hn::Eq(pixels.mask, hn::Zero(d8))));
      return {hn::Max(k.even, hn::And(hn::ShiftLeft<8>(masked), whole())),
              hn::Max(k.odd, hn::And(masked, whole()))};
    }
  }

  // 0 up to the tolerance, 8192 from twice the tolerance on; below 8192 in between.
  HWY_INLINE VI16 greyWeight(VI16 distance) const {
    const VI16 beyond =
        hn::BitCast(di16, hn::SaturatedSub(hn::BitCast(du16, distance), tolerance_));
    return hn::IfThenElse(hn::Gt(beyond, lastInBand_), whole(), hn::Mul(beyond, step_));
  }

  HueDistance distance_;
  VU16 tolerance_;
  VI16 lastInBand_;
  VI16 step_;
};

void fix(std::uint8_t* row, int pixels, const std::uint8_t* maskRow, const FadeRule& rule) {
  if (maskRow != nullptr) {
    walkRgbaRowInHalves(row, maskRow, pixels, Fader<GreyTexture>(rule));
  } else {
    walkRgbaRowInHalves(row, maskRow, pixels, Fader<NoTexture>(rule));
  }
}

struct GreyStep {
  using Texture = NoTexture;
  HWY_INLINE Rgb operator()(const Pixels<Texture>& p) const {
    const V8 grey = join(truncatedGrey(p.colour));
    return {grey, grey, grey};
  }
};

void grey(std::uint8_t* row, int pixels) {
  walkRgba({PixelFormat::kRgba, pixels, 1, 0, row, nullptr}, GreyStep{});
}

}  // namespace

const ColourFixKernels kColourFix{fix, grey};

}  // namespace lumora::HWY_NAMESPACE
