#include "effects/pyramid/mix_kernels.h"

#include "effects/pyramid/prefetch.h"
#include "pixels/interleave.h"
#include "pixels/row_walk.h"

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
HWY_INLINE EvenOdd doubled(const std::uint8_t* upper, const std::uint8_t* lower, std::ptrdiff_t x) {
  const auto own = hn::AverageRound(hn::LoadU(dHalf, upper + x), hn::LoadU(dHalf, lower + x));
  const auto next =
      hn::AverageRound(hn::LoadU(dHalf, upper + x + 1), hn::LoadU(dHalf, lower + x + 1));
  return {widen(own), widen(hn::AverageRound(own, next))};
}

// A vector of grown pixels, in the order of RGBA vectors.
struct GrownPixels {
  EvenOdd r, g, b;

  HWY_INLINE GrownPixels(const RgbaMixRow& row, std::ptrdiff_t x)
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
  walkRow<kLanes8>(
      row.widthPixels,
      [&](std::ptrdiff_t x, std::uint8_t* pixels) {
        prefetch(row.pixels + row.ahead + 4 * x, 4 * kLanes8);
        mixPixels(pixels, GrownPixels(row, x / 2), share);
      },
      Changes<4>{row.pixels});
}

// Most of a mask is one or the other of its ends.
void mixRgbaByMask(const RgbaMixRow& row) {
  walkRow<kLanes8>(
      row.widthPixels,
      [&](std::ptrdiff_t x, std::uint8_t* pixels, const std::uint8_t* maskAt) {
        const V8 mask = loadInRgbaOrder(maskAt);
        if (hn::AllTrue(d8, hn::Eq(mask, hn::Zero(d8)))) return;
        prefetch(row.pixels + row.ahead + 4 * x, 4 * kLanes8);
        const GrownPixels grown(row, x / 2);
        if (hn::AllTrue(d8, hn::Eq(mask, hn::Set(d8, 255)))) {
          replacePixels(pixels, grown);
        } else {
          mixPixels(pixels, grown, MaskShare::ofPixels(mask));
        }
      },
      Changes<4>{row.pixels}, Reads<1>{row.mask});
}

// Lane j of the 16-bit view holds luma 2j and 2j + 1, and chroma pair j.
template <class Share>
HWY_INLINE void mixBlocks(std::uint8_t* top, std::uint8_t* bottom, std::uint8_t* chroma,
                          const LevelOneRows& level, std::ptrdiff_t x, const Share& share) {
  const VI16 luma = widen(hn::LoadU(dHalf, level.channel[0] + x));
  const EvenOdd pair{widen(hn::LoadU(dHalf, level.channel[1] + x)),
                     widen(hn::LoadU(dHalf, level.channel[2] + x))};
  hn::StoreU(share.mix(hn::LoadU(d8, top), {luma, luma}), d8, top);
  hn::StoreU(share.mix(hn::LoadU(d8, bottom), {luma, luma}), d8, bottom);
  hn::StoreU(share.mix(hn::LoadU(d8, chroma), pair), d8, chroma);
}

HWY_INLINE void prefetchNext(const NvMixRows& rows, std::ptrdiff_t x) {
  prefetch(rows.top + rows.ahead + x, kLanes8);
  prefetch(rows.bottom + rows.ahead + x, kLanes8);
  prefetch(rows.chroma + rows.ahead / 2 + x, kLanes8);
}

void mixNvByWeight(const NvMixRows& rows) {
  const WeightShare share(rows.weight);
  walkRow<kLanes8>(
      rows.widthPixels,
      [&](std::ptrdiff_t x, std::uint8_t* top, std::uint8_t* bottom, std::uint8_t* chroma) {
        prefetchNext(rows, x);
        mixBlocks(top, bottom, chroma, rows.level, x / 2, share);
      },
      Changes<1>{rows.top}, Changes<1>{rows.bottom}, Changes<1>{rows.chroma});
}

void mixNvByMask(const NvMixRows& rows) {
  walkRow<kLanes8>(
      rows.widthPixels,
      [&](std::ptrdiff_t x, std::uint8_t* top, std::uint8_t* bottom, std::uint8_t* chroma,
          const std::uint8_t* maskAt) {
        const V8 mask = hn::LoadU(d8, maskAt);
        if (hn::AllTrue(d8, hn::Eq(mask, hn::Zero(d8)))) return;
        prefetchNext(rows, x);
        mixBlocks(top, bottom, chroma, rows.level, x / 2, MaskShare::ofBlocks(mask));
      },
      Changes<1>{rows.top}, Changes<1>{rows.bottom}, Changes<1>{rows.chroma}, Reads<1>{rows.mask});
}

}  // namespace

const MixKernels kMix = {mixRgbaByMask, mixRgbaByWeight, mixNvByMask, mixNvByWeight};

}  // namespace lumora::HWY_NAMESPACE
