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
inline constexpr hn::Repartition<std::int8_t, D8> di8{};
inline constexpr DU16 du16{};
inline constexpr DI16 di16{};
inline constexpr int kLanes8 = static_cast<int>(hn::MaxLanes(d8));

struct Rgb {
  V8 r;
  V8 g;
  V8 b;
};

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

// Joins the low bytes of lanes.
HWY_INLINE V8 joinLowBytes(EvenOdd halves) {
  return hn::OddEven(hn::BitCast(d8, hn::ShiftLeft<8>(halves.odd)), hn::BitCast(d8, halves.even));
}

// Joins the low bytes of lanes >> kBits.
template <int kBits>
HWY_INLINE V8 joinShifted(EvenOdd halves) {
  static_assert(kBits > 0 && kBits <= 8);
  const V8 even = hn::BitCast(d8, hn::ShiftRight<kBits>(halves.even));
  VI16 odd = halves.odd;
  if constexpr (kBits < 8) odd = hn::ShiftLeft<8 - kBits>(odd);
  return hn::OddEven(hn::BitCast(d8, odd), even);
}

#if HWY_ARCH_X86

// An instruction on whole vectors of the level, where Highway has no function that is just it.
#if HWY_TARGET == HWY_AVX3
#define LUMORA_X86_INTRINSIC(name) _mm512_##name
#elif HWY_TARGET == HWY_AVX2
#define LUMORA_X86_INTRINSIC(name) _mm256_##name
#else
#define LUMORA_X86_INTRINSIC(name) _mm_##name
#endif

// Clamps lanes to 0..255: within every 128-bit block the bytes of a, then those of b.
HWY_INLINE V8 packClamped(VI16 a, VI16 b) {
  return V8{LUMORA_X86_INTRINSIC(packus_epi16)(a.raw, b.raw)};
}

HWY_INLINE V8 alternateHalves() {
  HWY_ALIGN static constexpr std::uint8_t kAlternate[16] = {0, 8,  1, 9,  2, 10, 3, 11,
                                                            4, 12, 5, 13, 6, 14, 7, 15};
  return hn::LoadDup128(d8, kAlternate);
}

// Joins lanes clamped to 0..255.
HWY_INLINE V8 joinClamped(VI16 even, VI16 odd) {
  return hn::TableLookupBytes(packClamped(even, odd), alternateHalves());
}

// The same with the bytes in another order.
HWY_INLINE V8 joinClamped(VI16 even, VI16 odd, V8 order) {
  return hn::TableLookupBytes(packClamped(even, odd),
                              hn::TableLookupBytes(alternateHalves(), order));
}

#else

HWY_INLINE VI16 clampToByte(VI16 v) {
  return hn::Min(hn::Max(v, hn::Zero(di16)), hn::Set(di16, 255));
}
HWY_INLINE V8 joinClamped(VI16 even, VI16 odd) { return join(clampToByte(even), clampToByte(odd)); }
HWY_INLINE V8 joinClamped(VI16 even, VI16 odd, V8 order) {
  return hn::TableLookupBytes(joinClamped(even, odd), order);
}

#endif

HWY_INLINE V8 joinClamped(EvenOdd halves) { return joinClamped(halves.even, halves.odd); }

HWY_INLINE EvenOdd add(EvenOdd a, EvenOdd b) {
  return {hn::Add(a.even, b.even), hn::Add(a.odd, b.odd)};
}

HWY_INLINE EvenOdd mul(EvenOdd a, EvenOdd b) {
  return {hn::Mul(a.even, b.even), hn::Mul(a.odd, b.odd)};
}

// (a b + 2^14) >> 15. With factors times 2^k between them that is an exact rounding shift of the
// product by 15 - k, as long as both factors lie within the signed lanes.
HWY_INLINE EvenOdd mulFixedPoint15(EvenOdd a, EvenOdd b) {
  return {hn::MulFixedPoint15(a.even, b.even), hn::MulFixedPoint15(a.odd, b.odd)};
}

// (v + 2^(kBits - 1)) >> kBits.
template <int kBits>
HWY_INLINE VI16 shiftRightRounding(VI16 v) {
  return hn::MulFixedPoint15(v, hn::Set(di16, std::int16_t{1 << (15 - kBits)}));
}
template <int kBits>
HWY_INLINE EvenOdd shiftRightRounding(EvenOdd v) {
  return {shiftRightRounding<kBits>(v.even), shiftRightRounding<kBits>(v.odd)};
}

}  // namespace lumora::HWY_NAMESPACE
