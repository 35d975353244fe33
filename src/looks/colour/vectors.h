// Vectors of one level: bytes, and the 16-bit lanes that hold them two by two. Level sources only.
//
// 16-bit work is kept in even/odd form: lane j of the 16-bit view of a byte vector holds byte 2j in
// its low and byte 2j + 1 in its high half. Taking the halves apart and joining them never crosses
// a lane, and for NV pictures it is the 2 x 2 geometry itself: the chroma pair j lies in the same
// lane as luma 2j and 2j + 1.
#pragma once

#include <cstdint>

#include "hwy/highway.h"

namespace lumora::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using D8 = hn::ScalableTag<std::uint8_t>;
using DU16 = hn::Repartition<std::uint16_t, D8>;
using DI16 = hn::Repartition<std::int16_t, D8>;
using V8 = hn::Vec<D8>;
using VU16 = hn::Vec<DU16>;
using VI16 = hn::Vec<DI16>;

inline constexpr D8 d8{};
inline constexpr DU16 du16{};
inline constexpr DI16 di16{};
inline constexpr int kLanes8 = static_cast<int>(hn::MaxLanes(d8));

struct EvenOdd {
  VI16 even;
  VI16 odd;
};

// Bytes as 0..255 in signed lanes, which hold every intermediate of the looks' arithmetic.
HWY_INLINE EvenOdd split(V8 bytes) {
  const VU16 pairs = hn::BitCast(du16, bytes);
  return {hn::BitCast(di16, hn::And(pairs, hn::Set(du16, 0xFF))),
          hn::BitCast(di16, hn::ShiftRight<8>(pairs))};
}

// Joins lanes of 0..255.
HWY_INLINE V8 join(VI16 even, VI16 odd) {
  return hn::BitCast(d8, hn::Or(even, hn::ShiftLeft<8>(odd)));
}

HWY_INLINE V8 join(EvenOdd halves) { return join(halves.even, halves.odd); }

HWY_INLINE VI16 clampToByte(VI16 v) {
  return hn::Min(hn::Max(v, hn::Zero(di16)), hn::Set(di16, 255));
}

struct Rgb {
  V8 r;
  V8 g;
  V8 b;
};

// (19 R + 38 G + 7 B + 32) >> 6. The sum is at most 16352, and 38 is twice 19.
HWY_INLINE VI16 greyOf(VI16 r, VI16 g, VI16 b) {
  const VI16 redGreen = hn::Mul(hn::Add(r, hn::Add(g, g)), hn::Set(di16, 19));
  const VI16 sum = hn::Add(hn::Add(redGreen, hn::Mul(b, hn::Set(di16, 7))), hn::Set(di16, 32));
  return hn::ShiftRight<6>(sum);
}

// The luminance estimate of every look.
HWY_INLINE V8 GrayFromRGB(const Rgb& colour) {
  const EvenOdd r = split(colour.r), g = split(colour.g), b = split(colour.b);
  return join(greyOf(r.even, g.even, b.even), greyOf(r.odd, g.odd, b.odd));
}

}  // namespace lumora::HWY_NAMESPACE
