// Products of neighbouring bytes, left in the lane of their pair. x86 multiplies and adds pairs of
// bytes in one instruction, which spares taking them apart. Level sources only.
#pragma once

#include "pixels/vectors.h"

namespace lumora::HWY_NAMESPACE {

// Weights 0..127 for pairs of bytes.
HWY_INLINE V8 bytePairs(int first, int second) {
  return hn::BitCast(d8, hn::Set(du16, static_cast<std::uint16_t>(first | second << 8)));
}

#if HWY_ARCH_X86

// even u * even s + odd u * odd s, with s signed. The sums must lie within the signed lanes.
HWY_INLINE VI16 multiplyAddPairs(V8 u, V8 s) {
  return VI16{LUMORA_X86_INTRINSIC(maddubs_epi16)(u.raw, s.raw)};
}

// kEven * even byte + kOdd * odd byte of every pair.
template <int kEven, int kOdd>
HWY_INLINE VI16 weightedPairs(V8 bytes) {
  static_assert(kEven >= -128 && kEven <= 127 && kOdd >= -128 && kOdd <= 127);
  constexpr auto kWeights = static_cast<std::uint16_t>((kEven & 255) | (kOdd & 255) << 8);
  return multiplyAddPairs(bytes, hn::BitCast(d8, hn::Set(du16, kWeights)));
}

// Bytes -128..127 as factors of products: the even ones and the odd ones, zeros between them.
struct Factors {
  V8 even;
  V8 odd;
};
HWY_INLINE Factors factors(V8 signedBytes) {
  const VU16 pairs = hn::BitCast(du16, signedBytes);
  return {hn::BitCast(d8, hn::And(pairs, hn::Set(du16, 0x00FF))),
          hn::BitCast(d8, hn::And(pairs, hn::Set(du16, 0xFF00)))};
}
template <class Mask>
HWY_INLINE Factors eitherFactor(Mask isFirst, int first, int second) {
  return {hn::IfThenElse(isFirst, bytePairs(first, 0), bytePairs(second, 0)),
          hn::IfThenElse(isFirst, bytePairs(0, first), bytePairs(0, second))};
}

// Bytes 0..255 times factors.
HWY_INLINE EvenOdd products(V8 bytes, const Factors& f) {
  return {multiplyAddPairs(bytes, f.even), multiplyAddPairs(bytes, f.odd)};
}
// Factors 0..127 times bytes -128..127.
HWY_INLINE EvenOdd products(const Factors& f, V8 signedBytes) {
  return {multiplyAddPairs(f.even, signedBytes), multiplyAddPairs(f.odd, signedBytes)};
}

// (19 R + 38 G + 7 B + 32) >> 6: the luminance estimate of every look. The last pair is B and 1.
HWY_INLINE V8 GrayFromRGB(const Rgb& c) {
  const V8 one = hn::Set(d8, 1);
  const V8 redGreen = bytePairs(19, 38), blueHalf = bytePairs(7, 32);
  const VI16 low = hn::Add(multiplyAddPairs(hn::InterleaveLower(d8, c.r, c.g), redGreen),
                           multiplyAddPairs(hn::InterleaveLower(d8, c.b, one), blueHalf));
  const VI16 high = hn::Add(multiplyAddPairs(hn::InterleaveUpper(d8, c.r, c.g), redGreen),
                            multiplyAddPairs(hn::InterleaveUpper(d8, c.b, one), blueHalf));
  return packClamped(hn::ShiftRight<6>(low), hn::ShiftRight<6>(high));
}

// The same of lanes of 0..255.
HWY_INLINE VI16 GrayFromRGB(VI16 r, VI16 g, VI16 b) {
  return shiftRightRounding<6>(
      hn::Add(weightedPairs<19, 38>(join(r, g)), weightedPairs<7, 0>(hn::BitCast(d8, b))));
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

using Factors = EvenOdd;
HWY_INLINE Factors factors(V8 signedBytes) {
  const VI16 pairs = hn::BitCast(di16, signedBytes);
  return {hn::ShiftRight<8>(hn::ShiftLeft<8>(pairs)), hn::ShiftRight<8>(pairs)};
}
template <class Mask>
HWY_INLINE Factors eitherFactor(Mask isFirst, int first, int second) {
  const auto byte = [](int v) { return hn::Set(d8, static_cast<std::uint8_t>(v)); };
  return split(hn::IfThenElse(isFirst, byte(first), byte(second)));
}
HWY_INLINE EvenOdd products(V8 bytes, const Factors& f) { return mul(split(bytes), f); }
HWY_INLINE EvenOdd products(const Factors& f, V8 signedBytes) {
  return mul(f, factors(signedBytes));
}

HWY_INLINE VI16 GrayFromRGB(VI16 r, VI16 g, VI16 b) {
  const VI16 redGreen = hn::Mul(hn::Add(r, hn::Add(g, g)), hn::Set(di16, 19));
  return shiftRightRounding<6>(hn::Add(redGreen, hn::Mul(b, hn::Set(di16, 7))));
}
HWY_INLINE V8 GrayFromRGB(const Rgb& c) {
  const EvenOdd r = split(c.r), g = split(c.g), b = split(c.b);
  return join(GrayFromRGB(r.even, g.even, b.even), GrayFromRGB(r.odd, g.odd, b.odd));
}

template <int kBits>
HWY_INLINE V8 weightedMean(V8 a, V8 b, V8 weights) {
  const EvenOdd first = split(a), second = split(b), w = split(weights);
  const auto sum = [&w](VI16 x, VI16 y) { return hn::Add(hn::Mul(x, w.even), hn::Mul(y, w.odd)); };
  return join(shiftRightRounding<kBits>(sum(first.even, second.even)),
              shiftRightRounding<kBits>(sum(first.odd, second.odd)));
}

#endif

HWY_INLINE EvenOdd products(V8 bytes, V8 signedBytes) {
  return products(bytes, factors(signedBytes));
}

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

}  // namespace lumora::HWY_NAMESPACE
