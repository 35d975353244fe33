// Loads and stores of interleaved pixels. Level sources only.
//
// RGBA vectors hold their pixels in an order of their own, the one that needs no exchange between
// the 128-bit blocks of wide vectors: 32-bit lane i of block l holds the four pixels 4 (i n + l)
// and on, with n the number of blocks. What is loaded beside them comes in the same order.
#pragma once

#include "pixels/vectors.h"

namespace lumora::HWY_NAMESPACE {

struct Rgba {
  Rgb colour;
  V8 alpha;
};

#if HWY_ARCH_X86

using DU32 = hn::Repartition<std::uint32_t, D8>;
using DU64 = hn::Repartition<std::uint64_t, D8>;
inline constexpr DU32 du32{};
inline constexpr DU64 du64{};
inline constexpr int kBlocks = kLanes8 / 16;

// The 4 x 4 transpose of 32-bit lanes within every block.
HWY_INLINE Rgba transposed(const V8 (&rows)[4]) {
  const auto a = hn::BitCast(du32, rows[0]), b = hn::BitCast(du32, rows[1]);
  const auto c = hn::BitCast(du32, rows[2]), d = hn::BitCast(du32, rows[3]);
  const auto low01 = hn::BitCast(du64, hn::InterleaveLower(du32, a, b));
  const auto low23 = hn::BitCast(du64, hn::InterleaveLower(du32, c, d));
  const auto high01 = hn::BitCast(du64, hn::InterleaveUpper(du32, a, b));
  const auto high23 = hn::BitCast(du64, hn::InterleaveUpper(du32, c, d));
  return {{hn::BitCast(d8, hn::InterleaveLower(du64, low01, low23)),
           hn::BitCast(d8, hn::InterleaveUpper(du64, low01, low23)),
           hn::BitCast(d8, hn::InterleaveLower(du64, high01, high23))},
          hn::BitCast(d8, hn::InterleaveUpper(du64, high01, high23))};
}

HWY_INLINE Rgba loadRgba(const std::uint8_t* at) {
  HWY_ALIGN static constexpr std::uint8_t kByChannel[16] = {0, 4, 8,  12, 1, 5, 9,  13,
                                                            2, 6, 10, 14, 3, 7, 11, 15};
  const V8 byChannel = hn::LoadDup128(d8, kByChannel);
  V8 rows[4];
  for (int i = 0; i < 4; ++i) {
    rows[i] = hn::TableLookupBytes(hn::LoadU(d8, at + i * kLanes8), byChannel);
  }
  return transposed(rows);
}

HWY_INLINE void storeRgba(const Rgba& p, std::uint8_t* at) {
  const Rgb& c = p.colour;
  const auto rgLow = hn::BitCast(du16, hn::InterleaveLower(d8, c.r, c.g));
  const auto rgHigh = hn::BitCast(du16, hn::InterleaveUpper(d8, c.r, c.g));
  const auto baLow = hn::BitCast(du16, hn::InterleaveLower(d8, c.b, p.alpha));
  const auto baHigh = hn::BitCast(du16, hn::InterleaveUpper(d8, c.b, p.alpha));
  hn::StoreU(hn::BitCast(d8, hn::InterleaveLower(du16, rgLow, baLow)), d8, at);
  hn::StoreU(hn::BitCast(d8, hn::InterleaveUpper(du16, rgLow, baLow)), d8, at + kLanes8);
  hn::StoreU(hn::BitCast(d8, hn::InterleaveLower(du16, rgHigh, baHigh)), d8, at + 2 * kLanes8);
  hn::StoreU(hn::BitCast(d8, hn::InterleaveUpper(du16, rgHigh, baHigh)), d8, at + 3 * kLanes8);
}

struct RgbaLaneOrder {
  std::int32_t lanes[4 * kBlocks] = {};
  constexpr RgbaLaneOrder() {
    for (int i = 0; i < 4 * kBlocks; ++i) lanes[i] = i % 4 * kBlocks + i / 4;
  }
};

// From the order of the picture to that of RGBA vectors.
HWY_INLINE V8 inRgbaOrder(V8 natural) {
  if constexpr (kBlocks == 1) return natural;
  HWY_ALIGN static constexpr RgbaLaneOrder kOrder;
  return hn::BitCast(d8, hn::TableLookupLanes(hn::BitCast(du32, natural),
                                              hn::SetTableIndices(du32, kOrder.lanes)));
}

// Blocks of 16 bytes `step` bytes apart, the last one `lastBack` bytes earlier.
template <class D>
HWY_INLINE hn::Vec<D> loadBlocks(D d, const std::uint8_t* at, int step, int lastBack) {
  if constexpr (hn::MaxLanes(D()) == 16) {
    return hn::LoadU(d, at - lastBack);
  } else {
    const hn::Half<D> half;
    const int halfStep = static_cast<int>(hn::MaxLanes(half)) / 16 * step;
    return hn::Combine(d, loadBlocks(half, at + halfStep, step, lastBack),
                       loadBlocks(half, at, step, 0));
  }
}

// Byte positions of each channel in blocks of four pixels of three bytes; the last block holds them
// `lastBack` bytes later.
struct RgbPositions {
  std::uint8_t at[kLanes8] = {};
  constexpr explicit RgbPositions(int lastBack) {
    for (int i = 0; i < kLanes8; ++i) {
      const int channel = i % 16 / 4, pixel = i % 4;
      const int back = i >= kLanes8 - 16 ? lastBack : 0;
      at[i] = static_cast<std::uint8_t>(channel < 3 ? 3 * pixel + channel + back : 0x80);
    }
  }
};

// Three bytes a pixel. A block is loaded for every four pixels, its last four bytes unused; the
// block of the last four starts that much earlier, so that nothing behind them is read. Row i takes
// the groups of four pixels rowStep i and on, groupStep apart.
HWY_INLINE Rgb loadRgb(const std::uint8_t* at, int rowStep, int groupStep) {
  constexpr int kBack = 4;
  HWY_ALIGN static constexpr RgbPositions kRow(0), kLastRow(kBack);
  V8 rows[4];
  for (int i = 0; i < 4; ++i) {
    const std::uint8_t* const from = at + 12 * rowStep * i;
    const V8 blocks = loadBlocks(d8, from, 12 * groupStep, i == 3 ? kBack : 0);
    rows[i] = hn::TableLookupBytes(blocks, hn::Load(d8, i == 3 ? kLastRow.at : kRow.at));
  }
  return transposed(rows).colour;
}
HWY_INLINE Rgb loadRgb(const std::uint8_t* at) { return loadRgb(at, 1, 4); }
HWY_INLINE Rgb loadRgbInRgbaOrder(const std::uint8_t* at) { return loadRgb(at, kBlocks, 1); }

#else

HWY_INLINE Rgba loadRgba(const std::uint8_t* at) {
  Rgba p;
  hn::LoadInterleaved4(d8, at, p.colour.r, p.colour.g, p.colour.b, p.alpha);
  return p;
}

HWY_INLINE void storeRgba(const Rgba& p, std::uint8_t* at) {
  hn::StoreInterleaved4(p.colour.r, p.colour.g, p.colour.b, p.alpha, d8, at);
}

HWY_INLINE V8 inRgbaOrder(V8 natural) { return natural; }

HWY_INLINE Rgb loadRgb(const std::uint8_t* at) {
  Rgb p;
  hn::LoadInterleaved3(d8, at, p.r, p.g, p.b);
  return p;
}
HWY_INLINE Rgb loadRgbInRgbaOrder(const std::uint8_t* at) { return loadRgb(at); }

#endif

// One byte a pixel, in the order of RGBA vectors.
HWY_INLINE V8 loadInRgbaOrder(const std::uint8_t* at) { return inRgbaOrder(hn::LoadU(d8, at)); }

HWY_INLINE EvenOdd inRgbaOrder(EvenOdd natural) {
  return {hn::BitCast(di16, inRgbaOrder(hn::BitCast(d8, natural.even))),
          hn::BitCast(di16, inRgbaOrder(hn::BitCast(d8, natural.odd)))};
}

}  // namespace lumora::HWY_NAMESPACE
