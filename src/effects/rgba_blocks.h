// RGBA pixels taken apart into vectors of one channel, within blocks of 128 bits. Level sources
// only.
//
// Four vectors hold a vector's worth of pixels. Sorting channels within blocks alone is a third
// cheaper than keeping the pixels' order where vectors have several blocks; work that is the same
// for every pixel does not mind. Lane 4 i + j of block b is then pixel j of block b of the i-th
// vector. On ARM the processor sorts while it loads, in order, and there is one block.
#pragma once

#include "looks/colour/vectors.h"

namespace lumora::HWY_NAMESPACE {

using D32 = hn::Repartition<std::uint32_t, D8>;
using D64 = hn::Repartition<std::uint64_t, D8>;

struct RgbaBlocks {
  Rgb colour;
  V8 alpha;
};

#if HWY_ARCH_ARM

HWY_INLINE RgbaBlocks loadBlocks(const std::uint8_t* pixels) {
  RgbaBlocks p;
  hn::LoadInterleaved4(d8, pixels, p.colour.r, p.colour.g, p.colour.b, p.alpha);
  return p;
}

HWY_INLINE void storeBlocks(const Rgb& colour, V8 alpha, std::uint8_t* pixels) {
  hn::StoreInterleaved4(colour.r, colour.g, colour.b, alpha, d8, pixels);
}

// One sample per pixel, in the order of the pixels' lanes.
HWY_INLINE V8 loadSamples(const std::uint8_t* samples) { return hn::LoadU(d8, samples); }

#else

// Four pixels of a block to four times R, G, B and A.
HWY_INLINE hn::Vec<D32> gatherChannels(const std::uint8_t* pixels) {
  alignas(16) static constexpr std::uint8_t kOrder[16] = {0, 4, 8,  12, 1, 5, 9,  13,
                                                          2, 6, 10, 14, 3, 7, 11, 15};
  const V8 bytes = hn::TableLookupBytes(hn::LoadU(d8, pixels), hn::LoadDup128(d8, kOrder));
  return hn::BitCast(D32(), bytes);
}

HWY_INLINE RgbaBlocks loadBlocks(const std::uint8_t* pixels) {
  const D32 d32;
  const D64 d64;
  const auto v0 = gatherChannels(pixels), v1 = gatherChannels(pixels + kLanes8),
             v2 = gatherChannels(pixels + 2 * kLanes8), v3 = gatherChannels(pixels + 3 * kLanes8);
  const auto rg01 = hn::BitCast(d64, hn::InterleaveLower(d32, v0, v1));
  const auto ba01 = hn::BitCast(d64, hn::InterleaveUpper(d32, v0, v1));
  const auto rg23 = hn::BitCast(d64, hn::InterleaveLower(d32, v2, v3));
  const auto ba23 = hn::BitCast(d64, hn::InterleaveUpper(d32, v2, v3));
  return {{hn::BitCast(d8, hn::InterleaveLower(d64, rg01, rg23)),
           hn::BitCast(d8, hn::InterleaveUpper(d64, rg01, rg23)),
           hn::BitCast(d8, hn::InterleaveLower(d64, ba01, ba23))},
          hn::BitCast(d8, hn::InterleaveUpper(d64, ba01, ba23))};
}

HWY_INLINE void storeBlocks(const Rgb& colour, V8 alpha, std::uint8_t* pixels) {
  const auto rgLow = hn::BitCast(du16, hn::InterleaveLower(d8, colour.r, colour.g));
  const auto rgHigh = hn::BitCast(du16, hn::InterleaveUpper(d8, colour.r, colour.g));
  const auto baLow = hn::BitCast(du16, hn::InterleaveLower(d8, colour.b, alpha));
  const auto baHigh = hn::BitCast(du16, hn::InterleaveUpper(d8, colour.b, alpha));
  hn::StoreU(hn::BitCast(d8, hn::InterleaveLower(du16, rgLow, baLow)), d8, pixels);
  hn::StoreU(hn::BitCast(d8, hn::InterleaveUpper(du16, rgLow, baLow)), d8, pixels + kLanes8);
  hn::StoreU(hn::BitCast(d8, hn::InterleaveLower(du16, rgHigh, baHigh)), d8, pixels + 2 * kLanes8);
  hn::StoreU(hn::BitCast(d8, hn::InterleaveUpper(du16, rgHigh, baHigh)), d8, pixels + 3 * kLanes8);
}

// Four samples of every block belong to each of the four vectors.
struct SampleOrder {
  alignas(64) std::uint32_t from[kLanes8 / 4];

  constexpr SampleOrder() : from{} {
    constexpr int kBlocks = kLanes8 / 16;
    for (int i = 0; i < kLanes8 / 4; ++i) {
      from[i] = static_cast<std::uint32_t>(i % 4 * kBlocks + i / 4);
    }
  }
};

// One sample per pixel, in the order of the pixels' lanes.
HWY_INLINE V8 loadSamples(const std::uint8_t* samples) {
  static constexpr SampleOrder kOrder;
  const D32 d32;
  const auto fours = hn::BitCast(d32, hn::LoadU(d8, samples));
  return hn::BitCast(d8, hn::TableLookupLanes(fours, hn::SetTableIndices(d32, kOrder.from)));
}

#endif

}  // namespace lumora::HWY_NAMESPACE
