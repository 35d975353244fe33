// Conversion between NV blocks and RGB. Level sources only.
#pragma once

#include "pixels/pair_products.h"
#include "platform/picture.h"

namespace lumora::HWY_NAMESPACE {

// The pairs of NV21, V before U, are worked on. Between them and the pairs of the picture: bytes
// swap places in NV12.
HWY_INLINE V8 chromaOrder(PixelFormat format) {
  HWY_ALIGN static constexpr std::uint8_t kSame[16] = {0, 1, 2,  3,  4,  5,  6,  7,
                                                       8, 9, 10, 11, 12, 13, 14, 15};
  HWY_ALIGN static constexpr std::uint8_t kSwapped[16] = {1, 0, 3,  2,  5,  4,  7,  6,
                                                          9, 8, 11, 10, 13, 12, 15, 14};
  return hn::LoadDup128(d8, format == PixelFormat::kNv12 ? kSwapped : kSame);
}

// How a look's NV form converts. Most looks take 127 as neutral on both sides; some take 128.
struct NvConversion {
  int neutralIn = 127;
  int neutralOut = 127;
  enum class Means {
    kOfColours,  // chroma from the rounded mean of the four new colours
    kHalfAdds,   // means by pairs of rounding half-adds, the luma's pairs taken by column
  } means = Means::kOfColours;
};

// What a chroma pair adds to one channel of its four pixels, at most 228 either way: a byte to add
// and a byte to take off, one of them 0, for both pixels of a row.
struct ChannelShift {
  V8 plus;
  V8 minus;
};

struct ChromaShifts {
  ChannelShift r;
  ChannelShift g;
  ChannelShift b;
};

// The low byte of every 16-bit lane in both its bytes.
HWY_INLINE V8 lowByteTwice(VI16 v) {
  HWY_ALIGN static constexpr std::uint8_t kTwice[16] = {0, 0, 2,  2,  4,  4,  6,  6,
                                                        8, 8, 10, 10, 12, 12, 14, 14};
  return hn::TableLookupBytes(hn::BitCast(d8, v), hn::LoadDup128(d8, kTwice));
}

// (kEven even + kOdd odd + 32) >> 6 with the neutral value taken off both bytes of the pair. The
// weighted bytes lie within -17340..29070.
template <int kEven, int kOdd, int kNeutral>
HWY_INLINE ChannelShift channelShift(V8 pairs) {
  const VI16 bias = hn::Set(di16, std::int16_t{32 - kNeutral * (kEven + kOdd)});
  const VI16 shift = hn::ShiftRight<6>(hn::Add(weightedPairs<kEven, kOdd>(pairs), bias));
  const VI16 plus = hn::Max(shift, hn::Zero(di16));
  return {lowByteTwice(plus), lowByteTwice(hn::Sub(plus, shift))};
}

template <int kNeutral>
HWY_INLINE ChromaShifts chromaShifts(V8 pairs) {
  return {channelShift<90, 0, kNeutral>(pairs), channelShift<-46, -22, kNeutral>(pairs),
          channelShift<0, 114, kNeutral>(pairs)};
}

// Clamps at both ends.
HWY_INLINE V8 shifted(V8 luma, const ChannelShift& shift) {
  return hn::SaturatedSub(hn::SaturatedAdd(luma, shift.plus), shift.minus);
}

// The colours of one luma row over its chroma pairs: each channel is (64 Y + chroma + 32) >> 6,
// which is Y + ((chroma + 32) >> 6).
HWY_INLINE Rgb ConvertYUV2RGB(V8 luma, const ChromaShifts& shifts) {
  return {shifted(luma, shifts.r), shifted(luma, shifts.g), shifted(luma, shifts.b)};
}

struct NvBlock {
  V8 top;
  V8 bottom;
  V8 chroma;
};

// (a + b + c + d + 2) >> 2 over the four pixels of a 2 x 2 block.
HWY_INLINE VI16 blockMean(V8 top, V8 bottom) {
  return shiftRightRounding<2>(hn::Add(weightedPairs<1, 1>(top), weightedPairs<1, 1>(bottom)));
}

// (a + b + 1) >> 1.
HWY_INLINE VI16 halfAdd(VI16 a, VI16 b) { return shiftRightRounding<1>(hn::Add(a, b)); }
HWY_INLINE VI16 halfAddOfPairs(V8 bytes) {
  return shiftRightRounding<1>(weightedPairs<1, 1>(bytes));
}

struct BlockMeans {
  VI16 red;
  VI16 blue;
  VI16 luma;
};

HWY_INLINE BlockMeans meansOfColours(const Rgb& top, const Rgb& bottom) {
  const VI16 r = blockMean(top.r, bottom.r), g = blockMean(top.g, bottom.g);
  const VI16 b = blockMean(top.b, bottom.b);
  return {r, b, GrayFromRGB(r, g, b)};
}

HWY_INLINE BlockMeans meansByHalfAdds(const Rgb& top, const Rgb& bottom, V8 topLuma,
                                      V8 bottomLuma) {
  return {halfAdd(halfAddOfPairs(top.r), halfAddOfPairs(bottom.r)),
          halfAdd(halfAddOfPairs(top.b), halfAddOfPairs(bottom.b)),
          halfAddOfPairs(hn::AverageRound(topLuma, bottomLuma))};
}

// (weight (channel - luma) + 64 neutral + 32) >> 6: the weight times 512 is the rounding shift.
template <int kWeight, int kNeutral>
HWY_INLINE VI16 chromaOf(VI16 channel, VI16 luma) {
  const VI16 weight512 = hn::Set(di16, std::int16_t{kWeight * 512});
  const VI16 difference = hn::MulFixedPoint15(hn::Sub(channel, luma), weight512);
  return hn::Add(difference, hn::Set(di16, kNeutral));
}

// Two rows of new colours back to luma and the chroma pairs between them, in the order of the
// picture.
template <NvConversion kConversion>
HWY_INLINE NvBlock ConvertRGB2YUV(const Rgb& top, const Rgb& bottom, V8 order) {
  const V8 topLuma = GrayFromRGB(top), bottomLuma = GrayFromRGB(bottom);
  const BlockMeans mean = kConversion.means == NvConversion::Means::kOfColours
                              ? meansOfColours(top, bottom)
                              : meansByHalfAdds(top, bottom, topLuma, bottomLuma);
  const VI16 v = chromaOf<46, kConversion.neutralOut>(mean.red, mean.luma);
  const VI16 u = chromaOf<36, kConversion.neutralOut>(mean.blue, mean.luma);
  return {topLuma, bottomLuma, joinClamped(v, u, order)};
}

}  // namespace lumora::HWY_NAMESPACE
