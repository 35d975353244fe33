// Conversion between NV blocks and RGB. Level sources only.
#pragma once

#include "looks/colour/vectors.h"

namespace lumora::HWY_NAMESPACE {

enum class ChromaOrder { kVU, kUV };  // NV21, NV12

// How a look's NV form converts. Most looks take 127 as neutral on both sides; some take 128.
struct NvConversion {
  int neutralIn = 127;
  int neutralOut = 127;
  enum class Means {
    kOfColours,  // chroma from the rounded mean of the four new colours
    kHalfAdds,   // means by pairs of rounding half-adds, the luma's pairs taken by column
  } means = Means::kOfColours;
};

// What a chroma pair adds to 64 x luma in each channel, rounding included.
struct ChromaTerms {
  VI16 r;
  VI16 g;
  VI16 b;
};

// u and v lie in -128..128, so with 64 x 255 of luma every sum stays within +-31000.
template <ChromaOrder kOrder>
HWY_INLINE ChromaTerms chromaTerms(V8 pairs, int neutral) {
  const EvenOdd firstSecond = split(pairs);
  const VI16 offset = hn::Set(di16, static_cast<std::int16_t>(neutral));
  const bool vFirst = kOrder == ChromaOrder::kVU;
  const VI16 v = hn::Sub(vFirst ? firstSecond.even : firstSecond.odd, offset);
  const VI16 u = hn::Sub(vFirst ? firstSecond.odd : firstSecond.even, offset);
  const VI16 half = hn::Set(di16, 32);
  const VI16 greenV = hn::Mul(v, hn::Set(di16, 46));
  const VI16 greenU = hn::Mul(u, hn::Set(di16, 22));
  return {hn::Add(hn::Mul(v, hn::Set(di16, 90)), half), hn::Sub(hn::Sub(half, greenV), greenU),
          hn::Add(hn::Mul(u, hn::Set(di16, 114)), half)};
}

HWY_INLINE V8 channelOf(EvenOdd luma64, VI16 term) {
  return join(clampToByte(hn::ShiftRight<6>(hn::Add(luma64.even, term))),
              clampToByte(hn::ShiftRight<6>(hn::Add(luma64.odd, term))));
}

// The colours of one luma row over its chroma pairs.
HWY_INLINE Rgb ConvertYUV2RGB(V8 luma, const ChromaTerms& terms) {
  const EvenOdd y = split(luma);
  const EvenOdd luma64{hn::ShiftLeft<6>(y.even), hn::ShiftLeft<6>(y.odd)};
  return {channelOf(luma64, terms.r), channelOf(luma64, terms.g), channelOf(luma64, terms.b)};
}

struct NvBlock {
  V8 top;
  V8 bottom;
  V8 chroma;
};

struct RgbHalves {
  EvenOdd r;
  EvenOdd g;
  EvenOdd b;
};

HWY_INLINE RgbHalves split(const Rgb& colour) {
  return {split(colour.r), split(colour.g), split(colour.b)};
}

HWY_INLINE EvenOdd greyOf(const RgbHalves& c) {
  return {greyOf(c.r.even, c.g.even, c.b.even), greyOf(c.r.odd, c.g.odd, c.b.odd)};
}

// (a + b + c + d + 2) >> 2 over the four pixels of a 2 x 2 block.
HWY_INLINE VI16 blockMean(EvenOdd top, EvenOdd bottom) {
  const VI16 sum = hn::Add(hn::Add(top.even, top.odd), hn::Add(bottom.even, bottom.odd));
  return hn::ShiftRight<2>(hn::Add(sum, hn::Set(di16, 2)));
}

HWY_INLINE VI16 halfAdd(VI16 a, VI16 b) {
  return hn::ShiftRight<1>(hn::Add(hn::Add(a, b), hn::Set(di16, 1)));
}

// clamp((weight (channel - luma) + 64 neutral + 32) >> 6); the sum stays within +-20000.
HWY_INLINE VI16 chromaOf(VI16 channel, VI16 luma, int weight, int neutral) {
  const VI16 difference =
      hn::Mul(hn::Sub(channel, luma), hn::Set(di16, static_cast<std::int16_t>(weight)));
  const VI16 bias = hn::Set(di16, static_cast<std::int16_t>(64 * neutral + 32));
  return clampToByte(hn::ShiftRight<6>(hn::Add(difference, bias)));
}

// Two rows of new colours back to luma and the chroma pairs between them.
template <ChromaOrder kOrder, NvConversion kConversion>
HWY_INLINE NvBlock ConvertRGB2YUV(const Rgb& topColour, const Rgb& bottomColour) {
  const RgbHalves top = split(topColour), bottom = split(bottomColour);
  const EvenOdd yTop = greyOf(top), yBottom = greyOf(bottom);
  VI16 red, blue, luma;
  if constexpr (kConversion.means == NvConversion::Means::kOfColours) {
    red = blockMean(top.r, bottom.r);
    blue = blockMean(top.b, bottom.b);
    luma = greyOf(red, blockMean(top.g, bottom.g), blue);
  } else {
    red = halfAdd(halfAdd(top.r.even, top.r.odd), halfAdd(bottom.r.even, bottom.r.odd));
    blue = halfAdd(halfAdd(top.b.even, top.b.odd), halfAdd(bottom.b.even, bottom.b.odd));
    luma = halfAdd(halfAdd(yTop.even, yBottom.even), halfAdd(yTop.odd, yBottom.odd));
  }
  const VI16 v = chromaOf(red, luma, 46, kConversion.neutralOut);
  const VI16 u = chromaOf(blue, luma, 36, kConversion.neutralOut);
  return {join(yTop), join(yBottom), kOrder == ChromaOrder::kVU ? join(v, u) : join(u, v)};
}

}  // namespace lumora::HWY_NAMESPACE
