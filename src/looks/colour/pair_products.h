// Products of neighbouring bytes, left in the lane of their pair. x86 multiplies and adds pairs of
// bytes in one instruction, which spares taking them apart. Level sources only.
#pragma once

#include "looks/colour/vectors.h"

namespace lumora::HWY_NAMESPACE {

#if HWY_ARCH_X86

// even u * even s + odd u * odd s, with s signed. The sums must lie within the signed lanes.
HWY_INLINE VI16 multiplyAddPairs(V8 u, V8 s) {
#if HWY_TARGET == HWY_AVX3
  return VI16{_mm512_maddubs_epi16(u.raw, s.raw)};
#elif HWY_TARGET == HWY_AVX2
  return VI16{_mm256_maddubs_epi16(u.raw, s.raw)};
#else
  return VI16{_mm_maddubs_epi16(u.raw, s.raw)};
#endif
}

// kEven * even byte + kOdd * odd byte of every pair.
template <int kEven, int kOdd>
HWY_INLINE VI16 weightedPairs(V8 bytes) {
  static_assert(kEven >= -128 && kEven <= 127 && kOdd >= -128 && kOdd <= 127);
  constexpr auto kWeights = static_cast<std::uint16_t>((kEven & 255) | (kOdd & 255) << 8);
  return multiplyAddPairs(bytes, hn::BitCast(d8, hn::Set(du16, kWeights)));
}

// Bytes 0..255 times bytes -128..127.
HWY_INLINE EvenOdd products(V8 bytes, V8 signedBytes) {
  const VU16 pairs = hn::BitCast(du16, signedBytes);
  const V8 even = hn::BitCast(d8, hn::And(pairs, hn::Set(du16, 0x00FF)));
  const V8 odd = hn::BitCast(d8, hn::And(pairs, hn::Set(du16, 0xFF00)));
  return {multiplyAddPairs(bytes, even), multiplyAddPairs(bytes, odd)};
}

// The weights of weightedMean, 0..127 each.
HWY_INLINE V8 bytePairs(int first, int second) {
  return hn::BitCast(d8, hn::Set(du16, static_cast<std::uint16_t>(first | second << 8)));
}

// (a * first + b * second + 2^(kBits - 1)) >> kBits, which must be a byte.
template <int kBits>
HWY_INLINE V8 weightedMean(V8 a, V8 b, V8 weights) {
  const EvenOdd sums{multiplyAddPairs(hn::InterleaveLower(d8, a, b), weights),
                     multiplyAddPairs(hn::InterleaveUpper(d8, a, b), weights)};
  const EvenOdd v = shiftRightRounding<kBits>(sums);
  return packClamped(v.even, v.odd);
}

#else

template <int kWeight>
HWY_INLINE VI16 weighted(VI16 v) {
  if constexpr (kWeight == 0) return hn::Zero(di16);
  return kWeight == 1 ? v : hn::Mul(v, hn::Set(di16, std::int16_t{kWeight}));
}

template <int kEven, int kOdd>
HWY_INLINE VI16 weightedPairs(V8 bytes) {
  const EvenOdd v = split(bytes);
  if constexpr (kOdd == 0) return weighted<kEven>(v.even);
  if constexpr (kEven == 0) return weighted<kOdd>(v.odd);
  return hn::Add(weighted<kEven>(v.even), weighted<kOdd>(v.odd));
}

HWY_INLINE EvenOdd products(V8 bytes, V8 signedBytes) {
  const VI16 pairs = hn::BitCast(di16, signedBytes);
  return mul(split(bytes),
             {hn::ShiftRight<8>(hn::ShiftLeft<8>(pairs)), hn::ShiftRight<8>(pairs)});
}

#endif

template <int kWeight>
HWY_INLINE EvenOdd weightedHalves(V8 bytes) {
  return {weightedPairs<kWeight, 0>(bytes), weightedPairs<0, kWeight>(bytes)};
}

// Bytes times 128, more than a pair product can weigh.
HWY_INLINE EvenOdd times128(V8 bytes) {
  const VU16 pairs = hn::BitCast(du16, bytes), mask = hn::Set(du16, 0x7F80);
  return {hn::BitCast(di16, hn::And(hn::ShiftLeft<7>(pairs), mask)),
          hn::BitCast(di16, hn::And(hn::ShiftRight<1>(pairs), mask))};
}

// (19 R + 38 G + 7 B + 32) >> 6: the luminance estimate of every look. The sum is at most 16352.
HWY_INLINE EvenOdd greySums(const Rgb& c) {
  const VI16 half = hn::Set(di16, 32);
  const EvenOdd red = weightedHalves<19>(c.r), green = weightedHalves<38>(c.g);
  return add(add(red, green), add(weightedHalves<7>(c.b), {half, half}));
}
HWY_INLINE V8 GrayFromRGB(const Rgb& c) { return joinShifted<6>(greySums(c)); }

}  // namespace lumora::HWY_NAMESPACE
