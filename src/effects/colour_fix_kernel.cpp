#include "effects/colour_fix_kernel.h"

#include "effects/hue_distance.h"
#include "looks/colour/walk.h"

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

// A vector of pixels between the two halves of its work.
struct Started {
  Rgba pixels;
  HueDistance::Terms terms;
  V8 mask;
};

template <bool kMasked>
class Fader {
 public:
  HWY_INLINE explicit Fader(const FadeRule& rule)
      : distance_(rule.hue),
        tolerance_(hn::Set(du16, rule.tolerance)),
        // Without tolerance there is no band: distance 1 is grey already.
        lastInBand_(hn::Set(di16, rule.tolerance > 0 ? rule.tolerance - 1 : 0)),
        step_(hn::Set(di16, static_cast<std::int16_t>(rule.step))) {}

  HWY_INLINE Started start(const Rgba& pixels, const std::uint8_t* mask) const {
    return {pixels, distance_.terms(pixels.colour), kMasked ? loadInRgbaOrder(mask) : hn::Zero(d8)};
  }

  HWY_INLINE Rgb finish(const Started& pixels) const {
    const EvenOdd k = greyWeights(pixels);
    const Rgb& c = pixels.pixels.colour;
    const EvenOdd grey = truncatedGrey(c);
    const EvenOdd grey8{hn::ShiftLeft<3>(grey.even), hn::ShiftLeft<3>(grey.odd)};
    return {fade(c.r, grey8, k), fade(c.g, grey8, k), fade(c.b, grey8, k)};
  }

 private:
  static HWY_INLINE VI16 whole() { return hn::Set(di16, 8192); }

  HWY_INLINE EvenOdd greyWeights(const Started& pixels) const {
    const EvenOdd distance = distance_(pixels.terms);
    const EvenOdd k{greyWeight(distance.even), greyWeight(distance.odd)};
    if (!kMasked) return k;
    const VI16 masked = hn::BitCast(di16, hn::VecFromMask(d8, hn::Eq(pixels.mask, hn::Zero(d8))));
    return {hn::Max(k.even, hn::And(hn::ShiftLeft<8>(masked), whole())),
            hn::Max(k.odd, hn::And(masked, whole()))};
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

// A pixel's work is one long chain of dependent steps. Each vector is started while the one before
// it is finished, which fills the waits of both.
template <bool kMasked>
HWY_INLINE void fixRow(std::uint8_t* row, int pixels, const std::uint8_t* maskRow,
                       const FadeRule& rule) {
  const Fader<kMasked> fader(rule);
  int x = 0;
  if (pixels >= kLanes8) {
    Started started = fader.start(loadRgba(row), maskRow);
    for (; x + 2 * kLanes8 <= pixels; x += kLanes8) {
      const Rgba next = loadRgba(row + 4 * (x + kLanes8));
      const Rgb out = fader.finish(started);
      const V8 alpha = started.pixels.alpha;
      started = fader.start(next, maskRow + (x + kLanes8));
      storeRgba({out, alpha}, row + 4 * x);
    }
    storeRgba({fader.finish(started), started.pixels.alpha}, row + 4 * x);
    x += kLanes8;
  }
  if (x < pixels) {
    TailBlock<kLanes8, 4> tail;
    TailBlock<kLanes8, kMasked ? 1 : 0> maskTail;
    std::uint8_t* const at = tail.load(row + 4 * x, pixels - x);
    const Started last = fader.start(loadRgba(at), maskTail.load(maskRow + x, pixels - x));
    storeRgba({fader.finish(last), last.pixels.alpha}, at);
    tail.store(row + 4 * x);
  }
}

void fix(std::uint8_t* row, int pixels, const std::uint8_t* maskRow, const FadeRule& rule) {
  if (maskRow != nullptr) {
    fixRow<true>(row, pixels, maskRow, rule);
  } else {
    fixRow<false>(row, pixels, row, rule);  // any address: no mask is read
  }
}

void grey(std::uint8_t* row, int pixels) {
  TailBlock<kLanes8, 4> tail;
  for (int x = 0; x < pixels; x += kLanes8) {
    const int left = pixels - x;
    std::uint8_t* const at = left < kLanes8 ? tail.load(row + 4 * x, left) : row + 4 * x;
    const Rgba p = loadRgba(at);
    const V8 value = join(truncatedGrey(p.colour));
    storeRgba({{value, value, value}, p.alpha}, at);
    if (left < kLanes8) tail.store(row + 4 * x);
  }
}

}  // namespace

const ColourFixKernels kColourFix{fix, grey};

}  // namespace lumora::HWY_NAMESPACE
