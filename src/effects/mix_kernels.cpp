#include "effects/mix_kernels.h"

#include "effects/prefetch.h"
#include "looks/colour/walk.h"

namespace lumora::HWY_NAMESPACE {
namespace {

using DHalf = hn::Half<D8>;
inline constexpr DHalf dHalf{};

// Both pictures' shares of a lane's samples, in 1/256. The mask's ends take one picture whole;
// between them the shares sum to 255 only.
struct Shares {
  VI16 picture;
  VI16 grown;

  HWY_INLINE explicit Shares(VI16 mask) {
    const VI16 full = hn::Set(di16, 255);
    const VI16 isFull = hn::VecFromMask(di16, hn::Eq(mask, full));
    const VI16 isEmpty = hn::VecFromMask(di16, hn::Eq(mask, hn::Zero(di16)));
    picture = hn::Sub(hn::Sub(full, mask), isEmpty);
    grown = hn::Sub(mask, isFull);
  }

  // 256 times the mean in the lanes' 16 bits without sign, at most 65408.
  HWY_INLINE VU16 sum(VI16 pictureSample, VI16 grownSample) const {
    const VI16 both = hn::Add(hn::Mul(pictureSample, picture), hn::Mul(grownSample, grown));
    return hn::BitCast(du16, hn::Add(both, hn::Set(di16, 128)));
  }
};

// The shares of a vector of samples by mask bytes.
struct MaskShare {
  Shares even;
  Shares odd;

  static HWY_INLINE MaskShare ofPixels(V8 mask) {
    const EvenOdd m = split(mask);
    return {Shares(m.even), Shares(m.odd)};
  }
  // The even bytes alone, each for two samples.
  static HWY_INLINE MaskShare ofBlocks(V8 mask) {
    const Shares shares(split(mask).even);
    return {shares, shares};
  }

  HWY_INLINE V8 mix(V8 picture, EvenOdd grown) const {
    const EvenOdd p = split(picture);
    const VU16 low = hn::ShiftRight<8>(even.sum(p.even, grown.even));
    const VU16 high = hn::And(odd.sum(p.odd, grown.odd), hn::Set(du16, 0xFF00));
    return hn::BitCast(d8, hn::Or(low, high));
  }
};

// The share of a constant weight: picture + (((grown - picture) weight + 16) >> 5), the rounding
// shift being MulFixedPoint15(grown - picture, weight << 10).
struct WeightShare {
  VI16 weight1024;

  HWY_INLINE explicit WeightShare(int weight)
      : weight1024(hn::Set(di16, static_cast<std::int16_t>(weight << 10))) {}

  HWY_INLINE V8 mix(V8 picture, EvenOdd grown) const {
    const EvenOdd p = split(picture);
    return join(mean(p.even, grown.even), mean(p.odd, grown.odd));
  }

 private:
  HWY_INLINE VI16 mean(VI16 picture, VI16 grown) const {
    return hn::Add(picture, hn::MulFixedPoint15(hn::Sub(grown, picture), weight1024));
  }
};

HWY_INLINE VI16 widen(hn::Vec<DHalf> samples) {
  return hn::BitCast(di16, hn::PromoteTo(du16, samples));
}

// Half a vector of samples from x on, doubled.
HWY_INLINE EvenOdd doubled(const std::uint8_t* upper, const std::uint8_t* lower, int x) {
  const auto own = hn::AverageRound(hn::LoadU(dHalf, upper + x), hn::LoadU(dHalf, lower + x));
  const auto next =
      hn::AverageRound(hn::LoadU(dHalf, upper + x + 1), hn::LoadU(dHalf, lower + x + 1));
  return {widen(own), widen(hn::AverageRound(own, next))};
}

// A vector of grown pixels, in the order of RGBA vectors.
struct GrownPixels {
  EvenOdd r, g, b;

  HWY_INLINE GrownPixels(const RgbaMixRow& row, int x)
      : r(inRgbaOrder(doubled(row.upper.channel[0], row.lower.channel[0], x))),
        g(inRgbaOrder(doubled(row.upper.channel[1], row.lower.channel[1], x))),
        b(inRgbaOrder(doubled(row.upper.channel[2], row.lower.channel[2], x))) {}
};

template <class Share>
HWY_INLINE void mixPixels(std::uint8_t* pixels, const GrownPixels& grown, const Share& share) {
  const Rgba p = loadRgba(pixels);
  const Rgb mixed{share.mix(p.colour.r, grown.r), share.mix(p.colour.g, grown.g),
                  share.mix(p.colour.b, grown.b)};
  storeRgba({mixed, p.alpha}, pixels);
}

HWY_INLINE void replacePixels(std::uint8_t* pixels, const GrownPixels& grown) {
  storeRgba({{join(grown.r), join(grown.g), join(grown.b)}, loadRgba(pixels).alpha}, pixels);
}

void mixRgbaByWeight(const RgbaMixRow& row) {
  const WeightShare share(row.weight);
  TailBlock<kLanes8, 4> tail;
  for (int x = 0; x < row.widthPixels; x += kLanes8) {
    const int left = row.widthPixels - x;
    std::uint8_t* const inRow = row.pixels + 4 * x;
    std::uint8_t* const pixels = left < kLanes8 ? tail.load(inRow, left) : inRow;
    prefetch(row.pixels + row.ahead + 4 * x, 4 * kLanes8);
    mixPixels(pixels, GrownPixels(row, x / 2), share);
    if (left < kLanes8) tail.store(inRow);
  }
}

// Most of a mask is one or the other of its ends.
void mixRgbaByMask(const RgbaMixRow& row) {
  TailBlock<kLanes8, 4> tail;
  TailBlock<kLanes8, 1> maskTail;
  for (int x = 0; x < row.widthPixels; x += kLanes8) {
    const int left = row.widthPixels - x;
    std::uint8_t* const inRow = row.pixels + 4 * x;
    std::uint8_t* const pixels = left < kLanes8 ? tail.load(inRow, left) : inRow;
    const V8 mask =
        loadInRgbaOrder(left < kLanes8 ? maskTail.load(row.mask + x, left) : row.mask + x);
    prefetch(row.mask + row.widthPixels + x, kLanes8);
    if (hn::AllTrue(d8, hn::Eq(mask, hn::Zero(d8)))) continue;
    prefetch(row.pixels + row.ahead + 4 * x, 4 * kLanes8);
    const GrownPixels grown(row, x / 2);
    if (hn::AllTrue(d8, hn::Eq(mask, hn::Set(d8, 255)))) {
      replacePixels(pixels, grown);
    } else {
      mixPixels(pixels, grown, MaskShare::ofPixels(mask));
    }
    if (left < kLanes8) tail.store(inRow);
  }
}

// Lane j of the 16-bit view holds luma 2j and 2j + 1, and chroma pair j.
template <class Share>
HWY_INLINE void mixBlocks(const NvPointers& at, const LevelOneRows& level, int x,
                          const Share& share) {
  const VI16 luma = widen(hn::LoadU(dHalf, level.channel[0] + x));
  const EvenOdd pair{widen(hn::LoadU(dHalf, level.channel[1] + x)),
                     widen(hn::LoadU(dHalf, level.channel[2] + x))};
  hn::StoreU(share.mix(hn::LoadU(d8, at.top), {luma, luma}), d8, at.top);
  hn::StoreU(share.mix(hn::LoadU(d8, at.bottom), {luma, luma}), d8, at.bottom);
  hn::StoreU(share.mix(hn::LoadU(d8, at.chroma), pair), d8, at.chroma);
}

HWY_INLINE void prefetchNext(const NvMixRows& rows, int x) {
  prefetch(rows.top + rows.ahead + x, kLanes8);
  prefetch(rows.bottom + rows.ahead + x, kLanes8);
  prefetch(rows.chroma + rows.ahead / 2 + x, kLanes8);
}

void mixNvByWeight(const NvMixRows& rows) {
  const WeightShare share(rows.weight);
  NvTail<NoTexture> tail;
  for (int x = 0; x < rows.widthPixels; x += kLanes8) {
    const int left = rows.widthPixels - x;
    const NvPointers inRows{rows.top + x, rows.bottom + x, rows.chroma + x, nullptr, nullptr};
    prefetchNext(rows, x);
    mixBlocks(left < kLanes8 ? tail.load(inRows, left) : inRows, rows.level, x / 2, share);
    if (left < kLanes8) tail.store(inRows);
  }
}

void mixNvByMask(const NvMixRows& rows) {
  NvTail<NoTexture> tail;
  TailBlock<kLanes8, 1> maskTail;
  for (int x = 0; x < rows.widthPixels; x += kLanes8) {
    const int left = rows.widthPixels - x;
    const NvPointers inRows{rows.top + x, rows.bottom + x, rows.chroma + x, nullptr, nullptr};
    const V8 mask =
        hn::LoadU(d8, left < kLanes8 ? maskTail.load(rows.mask + x, left) : rows.mask + x);
    prefetch(rows.mask + 2 * rows.widthPixels + x, kLanes8);
    if (hn::AllTrue(d8, hn::Eq(mask, hn::Zero(d8)))) continue;
    prefetchNext(rows, x);
    mixBlocks(left < kLanes8 ? tail.load(inRows, left) : inRows, rows.level, x / 2,
              MaskShare::ofBlocks(mask));
    if (left < kLanes8) tail.store(inRows);
  }
}

}  // namespace

const MixKernels kMix = {mixRgbaByMask, mixRgbaByWeight, mixNvByMask, mixNvByWeight};

}  // namespace lumora::HWY_NAMESPACE
