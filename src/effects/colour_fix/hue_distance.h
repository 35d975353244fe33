// How far a pixel's hue is from a reference hue. Level sources only.
//
// Hues are places on a circle of 255. The order of a pixel's channels gives the hue's base: 0, 85
// or 170 where red, green or blue is the highest (in this order where they are equal). The hue lies
// above or below its base by
//   turn = truncate(difference x (42.5 x e(range))),
// with range the highest channel less the lowest, difference that of the two that are not the
// highest, and e the reciprocal estimate; at most 42.
#pragma once

#include "effects/colour_fix/reciprocal_estimate.h"
#include "pixels/curves.h"

namespace lumora::HWY_NAMESPACE {

// A factor that the compiler does not know. A known one it takes apart into shifts and additions,
// several instructions instead of one multiplication.
HWY_INLINE VI16 opaqueFactor(std::int16_t value) {
  asm("" : "+r"(value));
  return hn::Set(di16, value);
}

// yes where the top bit of v is set. Highway's own does not hold its promise below SSE4.
HWY_INLINE V8 ifTopBit(V8 v, V8 yes, V8 no) {
  const auto sign = hn::BitCast(di8, v);
#if HWY_TARGET == HWY_SSSE3
  const auto mask = hn::MaskFromVec(hn::BitCast(d8, hn::BroadcastSignBit(sign)));
  return hn::IfThenElse(mask, yes, no);
#else
  return hn::BitCast(d8, hn::IfNegativeThenElse(sign, hn::BitCast(di8, yes), hn::BitCast(di8, no)));
#endif
}

// The turn in integers. With lg = floor(log2(range)) and r the nine bits of the estimate, e(range)
// = r / 2^(9 + lg), and turn = ((difference << (7 - lg)) x 85 r) >> 17. The factors stay below 2^8
// and 2^16, so the products of the single-precision form are exact and both agree.
//
// It is a long chain of dependent steps; callers with other work to do may call its two halves
// apart.
class Turn {
 public:
  HWY_INLINE Turn() {
    alignas(16) static constexpr std::uint8_t kLow[16] = {255, 128, 64, 64, 32, 32, 32, 32,
                                                          16,  16,  16, 16, 16, 16, 16, 16};
    alignas(16) static constexpr std::uint8_t kHigh[16] = {255, 8, 4, 4, 2, 2, 2, 2,
                                                           1,   1, 1, 1, 1, 1, 1, 1};
    low_ = hn::LoadDup128(d8, kLow);
    high_ = hn::LoadDup128(d8, kHigh);
    for (int i = 0; i < 8; ++i) table_[i] = hn::LoadDup128(d8, kReciprocals.at + 16 * i);
    eightyFive_ = opaqueFactor(85);
  }

  // Both scaled by 1 << (7 - lg): the range to 128..255, or 0.
  struct Scaled {
    V8 range;
    EvenOdd difference;
  };

  HWY_INLINE Scaled scale(V8 range, V8 difference) const {
    const EvenOdd factor = split(normaliser(range)), r = split(range), d = split(difference);
    return {join(hn::Mul(r.even, factor.even), hn::Mul(r.odd, factor.odd)),
            {hn::Mul(d.even, factor.even), hn::Mul(d.odd, factor.odd)}};
  }

  HWY_INLINE EvenOdd operator()(const Scaled& scaled) const {
    const EvenOdd low8 = split(estimate(scaled.range));
    return {turn(scaled.difference.even, low8.even), turn(scaled.difference.odd, low8.odd)};
  }

 private:
  // 1 << (7 - lg), by the nibbles of the range. The high one's table has the smaller factors where
  // that nibble is not 0, so the lesser of the two is the one that counts. Range 0 stays 0.
  HWY_INLINE V8 normaliser(V8 range) const {
    return hn::Min(hn::TableLookupBytes(low_, hn::And(range, hn::Set(d8, 0x0F))),
                   hn::TableLookupBytes(high_, highNibble(range)));
  }

  // The estimate's lower eight bits, of 128..255; its ninth is always set. Eight tables of sixteen,
  // of which bits 4, 5 and 6 choose.
  HWY_INLINE V8 estimate(V8 range) const {
    const V8 index = hn::And(range, hn::Set(d8, 0x0F));
    const VU16 bits = hn::BitCast(du16, range);
    const V8 bit6 = hn::BitCast(d8, hn::ShiftLeft<1>(bits));
    const V8 bit5 = hn::BitCast(d8, hn::ShiftLeft<2>(bits));
    const V8 bit4 = hn::BitCast(d8, hn::ShiftLeft<3>(bits));
    V8 t[8];
    for (int i = 0; i < 8; ++i) t[i] = hn::TableLookupBytes(table_[i], index);
    const V8 low = ifTopBit(bit5, ifTopBit(bit4, t[3], t[2]), ifTopBit(bit4, t[1], t[0]));
    const V8 high = ifTopBit(bit5, ifTopBit(bit4, t[7], t[6]), ifTopBit(bit4, t[5], t[4]));
    return ifTopBit(bit6, high, low);
  }

  // 85 x 255 fits 15 bits, so the product's upper half is all that the shift by 17 leaves but one.
  HWY_INLINE VI16 turn(VI16 difference, VI16 low8) const {
    const VU16 times85 = hn::BitCast(du16, hn::Mul(difference, eightyFive_));
    const VU16 nineBits = hn::BitCast(du16, hn::Or(low8, hn::Set(di16, 256)));
    return hn::BitCast(di16, hn::ShiftRight<1>(hn::MulHigh(times85, nineBits)));
  }

  V8 low_;
  V8 high_;
  V8 table_[8];
  VI16 eightyFive_;
};

// Only the distance between a pixel's turn and a place matters: the reference hue as seen from the
// pixel's base, in the direction of the turn. There are six places, one for each order.
class HueDistance {
 public:
  HWY_INLINE explicit HueDistance(int reference) {
    const int kUp[3] = {kRedGreen | kRedBlue | kGreenBlue, kGreenBlue, kRedGreen};
    const int kDown[3] = {kRedGreen | kRedBlue, kRedBlue | kGreenBlue, 0};
    HWY_ALIGN std::uint8_t place[16] = {};
    for (int sector = 0; sector < 3; ++sector) {
      const int above = (reference + 255 - 85 * sector) % 255;
      place[kUp[sector]] = static_cast<std::uint8_t>(above);
      place[kDown[sector]] = static_cast<std::uint8_t>((255 - above) % 255);
    }
    places_ = hn::LoadDup128(d8, place);
  }

  // What the distance is worked out from.
  struct Terms {
    Turn::Scaled scaled;
    V8 place;
  };

  HWY_INLINE Terms terms(const Rgb& c) const {
    const V8 higher = hn::Max(c.r, c.g), lower = hn::Min(c.r, c.g);
    const V8 highest = hn::Max(higher, c.b), lowest = hn::Min(lower, c.b);
    const V8 middle = hn::Max(lower, hn::Min(higher, c.b));
    const V8 order = hn::Or(hn::Or(bitIf<kRedGreen>(hn::Eq(higher, c.r)),
                                   bitIf<kRedBlue>(hn::Eq(hn::Max(c.r, c.b), c.r))),
                            bitIf<kGreenBlue>(hn::Eq(hn::Max(c.g, c.b), c.g)));
    return {turn_.scale(hn::Sub(highest, lowest), hn::Sub(middle, lowest)),
            hn::TableLookupBytes(places_, order)};
  }

  // 0..127.
  HWY_INLINE EvenOdd operator()(const Terms& terms) const {
    const EvenOdd turn = turn_(terms.scaled), place = split(terms.place);
    return {between(place.even, turn.even), between(place.odd, turn.odd)};
  }

 private:
  // Bits of an order: the first channel is not below the second.
  static constexpr int kRedGreen = 1, kRedBlue = 2, kGreenBlue = 4;

  template <int kBit>
  static HWY_INLINE V8 bitIf(hn::Mask<D8> mask) {
    return hn::And(hn::VecFromMask(d8, mask), hn::Set(d8, kBit));
  }

  // The shorter way round; place is 0..254.
  static HWY_INLINE VI16 between(VI16 place, VI16 turn) {
    const VI16 apart = hn::Sub(place, turn);
    return hn::Min(hn::Abs(apart), hn::Sub(hn::Set(di16, 255), apart));
  }

  Turn turn_;
  V8 places_;
};

}  // namespace lumora::HWY_NAMESPACE
