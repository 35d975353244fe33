#include "effects/colour_fix_kernel.h"

#include "effects/hue_distance.h"
#include "effects/rgba_blocks.h"
#include "looks/colour/walk.h"

namespace lumora::HWY_NAMESPACE {
namespace {

struct Halves {
  EvenOdd r;
  EvenOdd g;
  EvenOdd b;

  HWY_INLINE explicit Halves(const Rgb& c) : r(split(c.r)), g(split(c.g)), b(split(c.b)) {}
};

// (19 R + 38 G + 7 B) >> 6: unlike that of the looks this grey is not rounded.
class TruncatedGrey {
 public:
  HWY_INLINE TruncatedGrey() : nineteen_(opaqueFactor(19)), seven_(opaqueFactor(7)) {}

  HWY_INLINE EvenOdd operator()(const Halves& c) const {
    return {half(c.r.even, c.g.even, c.b.even), half(c.r.odd, c.g.odd, c.b.odd)};
  }

 private:
  // The sum is at most 16320; 38 is twice 19.
  HWY_INLINE VI16 half(VI16 r, VI16 g, VI16 b) const {
    const VI16 redGreen = hn::Mul(hn::Add(r, hn::Add(g, g)), nineteen_);
    return hn::ShiftRight<6>(hn::Add(redGreen, hn::Mul(b, seven_)));
  }

  VI16 nineteen_;
  VI16 seven_;
};

// (c (8192 - k) + grey k) >> 13 = c + ((8 (grey - c) k) >> 16), for k = 0..8192.
HWY_INLINE VI16 fade(VI16 c, VI16 grey, VI16 k) {
  return hn::Add(c, hn::MulHigh(hn::ShiftLeft<3>(hn::Sub(grey, c)), k));
}

HWY_INLINE V8 fade(const EvenOdd& c, const EvenOdd& grey, const EvenOdd& k) {
  return join(fade(c.even, grey.even, k.even), fade(c.odd, grey.odd, k.odd));
}

// A vector of pixels between the two halves of its work.
struct Started {
  RgbaBlocks pixels;
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

  HWY_INLINE Started start(const RgbaBlocks& pixels, const std::uint8_t* mask) const {
    return {pixels, distance_.terms(pixels.colour), kMasked ? loadSamples(mask) : hn::Zero(d8)};
  }

  HWY_INLINE Rgb finish(const Started& pixels) const {
    const EvenOdd k = greyWeights(pixels);
    const Halves c(pixels.pixels.colour);
    const EvenOdd grey = grey_(c);
    return {fade(c.r, grey, k), fade(c.g, grey, k), fade(c.b, grey, k)};
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
  TruncatedGrey grey_;
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
    Started started = fader.start(loadBlocks(row), maskRow);
    for (; x + 2 * kLanes8 <= pixels; x += kLanes8) {
      const RgbaBlocks next = loadBlocks(row + 4 * (x + kLanes8));
      const Rgb out = fader.finish(started);
      const V8 alpha = started.pixels.alpha;
      started = fader.start(next, maskRow + (x + kLanes8));
      storeBlocks(out, alpha, row + 4 * x);
    }
    storeBlocks(fader.finish(started), started.pixels.alpha, row + 4 * x);
    x += kLanes8;
  }
  if (x < pixels) {
    TailBlock<kLanes8, 4> tail;
    TailBlock<kLanes8, kMasked ? 1 : 0> maskTail;
    std::uint8_t* const at = tail.load(row + 4 * x, pixels - x);
    const Started last = fader.start(loadBlocks(at), maskTail.load(maskRow + x, pixels - x));
    storeBlocks(fader.finish(last), last.pixels.alpha, at);
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
  const TruncatedGrey greyOf;
  TailBlock<kLanes8, 4> tail;
  for (int x = 0; x < pixels; x += kLanes8) {
    const int left = pixels - x;
    std::uint8_t* const at = left < kLanes8 ? tail.load(row + 4 * x, left) : row + 4 * x;
    const RgbaBlocks p = loadBlocks(at);
    const V8 value = join(greyOf(Halves(p.colour)));
    storeBlocks({value, value, value}, p.alpha, at);
    if (left < kLanes8) tail.store(row + 4 * x);
  }
}

}  // namespace

const ColourFixKernels kColourFix{fix, grey};

}  // namespace lumora::HWY_NAMESPACE
