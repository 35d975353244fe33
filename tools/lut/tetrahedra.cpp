#include "lut/tetrahedra.h"

#include <cstring>

#include "pixels/vectors.h"

namespace lumora::HWY_NAMESPACE {
namespace {

using DI32 = hn::Repartition<std::int32_t, D8>;
using VI32 = hn::Vec<DI32>;
constexpr DI32 di32{};
constexpr hn::Repartition<std::uint32_t, D8> du32{};
constexpr int kLanes = static_cast<int>(hn::MaxLanes(di32));  // pixels

// Pixels whose corners are found together. Those of the next block are found before a block is
// mixed: what has just been stored by vectors is slow to be read by parts.
constexpr int kBlock = 16;
static_assert(kBlock % kLanes == 0);

// Parts of the way from node to node are counted in 1/32768 and cut to multiples of four, which
// leaves room for the number of their channel: so sorting parts sorts channels.
constexpr int kPartBits = 15;
constexpr int kNumberMask = 3;
enum Channel { kRed = 1, kGreen = 2, kBlue = 3 };

// Which diagonals pixels need, in bytes from the first of all, and the weights of their ends, near
// one low and far one high. No part is 0 with a channel's number in it, so no weight is above
// 32767; the four of a pixel add up to 32768.
struct Corners {
  alignas(64) std::uint32_t cell[kBlock];
  alignas(64) std::uint32_t stepOn[kBlock];    // along the greatest part
  alignas(64) std::uint32_t stepBack[kBlock];  // along the least part
  alignas(64) std::int32_t cellWeights[kBlock];
  alignas(64) std::int32_t stepWeights[kBlock];  // of one end each: on, near; back, far
};

// The grid's factors as vectors.
struct Steps {
  explicit Steps(const lut::Grid& grid);

  VU16 cells;           // of a channel
  VI32 front;           // diagonals before the first node's
  VI16 blueRed;         // by pairs of cells: how many diagonals on, negated, as 256^2 is too great
  VI16 blueGreen;       // the two shares of blue add up
  VI32 bytesByChannel;  // to the next node along it
};

VI16 pairOf(int low, int high) {
  const auto bits = [](int v) { return static_cast<std::uint32_t>(static_cast<std::uint16_t>(v)); };
  return hn::BitCast(di16, hn::Set(du32, bits(low) | bits(high) << 16));
}

Steps::Steps(const lut::Grid& grid)
    : cells(hn::Set(du16, static_cast<std::uint16_t>(grid.size - 1))) {
  const int plane = grid.size * grid.size;
  front = hn::Set(di32, plane);
  blueRed = pairOf(-(plane / 2), -1);
  blueGreen = pairOf(-(plane - plane / 2), -grid.size);
  constexpr int kBytes = sizeof(lut::Diagonal);
  alignas(64) const std::int32_t bytes[kLanes] = {0, kBytes, kBytes * grid.size, kBytes * plane};
  bytesByChannel = hn::Load(di32, bytes);
}

// Of blue and another channel, in the low and the high half of every pixel's lane.
struct Places {
  VU16 blueRed;
  VU16 blueGreen;
};

// A byte in both halves of 16 bits is 257 times as much.
HWY_INLINE Places placesOf(const std::uint8_t* pixels) {
  alignas(16) static constexpr std::uint8_t kBlueRed[16] = {2,  2,  0, 0, 6,  6,  4,  4,
                                                            10, 10, 8, 8, 14, 14, 12, 12};
  alignas(16) static constexpr std::uint8_t kBlueGreen[16] = {2,  2,  1, 1, 6,  6,  5,  5,
                                                              10, 10, 9, 9, 14, 14, 13, 13};
  const V8 bytes = hn::LoadU(d8, pixels);
  return {hn::BitCast(du16, hn::TableLookupBytes(bytes, hn::LoadDup128(d8, kBlueRed))),
          hn::BitCast(du16, hn::TableLookupBytes(bytes, hn::LoadDup128(d8, kBlueGreen)))};
}

HWY_INLINE Places placesOf(const std::uint8_t* pixels, const std::uint16_t* places) {
  alignas(64) std::uint16_t blueRed[2 * kLanes], blueGreen[2 * kLanes];
  for (int i = 0; i < 2 * kLanes; i += 2, pixels += 4) {
    blueRed[i] = blueGreen[i] = places[512 + pixels[2]];
    blueRed[i + 1] = places[pixels[0]];
    blueGreen[i + 1] = places[256 + pixels[1]];
  }
  return {hn::Load(du16, blueRed), hn::Load(du16, blueGreen)};
}

struct Located {
  VI16 cells;
  VI16 parts;
};

// A place times the cells, divided by 65535: by 65536, and what that leaves out of the rest is the
// quotient.
template <Channel kOther>
HWY_INLINE Located locate(VU16 places, VU16 cellCount) {
  const VU16 cells = hn::MulHigh(places, cellCount);
  const VU16 parts = hn::ShiftRight<16 - kPartBits>(hn::Add(hn::Mul(places, cellCount), cells));
  return {hn::BitCast(di16, cells), hn::OrAnd(pairOf(kBlue, kOther), hn::BitCast(di16, parts),
                                              hn::Set(di16, std::int16_t{~kNumberMask}))};
}

// Of every pair the products of a and b, and those of c and d.
HWY_INLINE VI32 addProducts(VI16 a, VI16 b, VI16 c, VI16 d) {
  VI32 rest = hn::Zero(di32);
  const VI32 first = hn::ReorderWidenMulAccumulate(di32, a, b, hn::Zero(di32), rest);
  const VI32 both = hn::ReorderWidenMulAccumulate(di32, c, d, first, rest);
  return hn::RearrangeToOddPlusEven(both, rest);
}

HWY_INLINE VI32 bytesAlong(VI16 part, const Steps& steps) {
  const VI32 number = hn::And(hn::BitCast(di32, part), hn::Set(di32, kNumberMask));
  return hn::TableLookupLanes(steps.bytesByChannel, hn::IndicesFromVec(di32, number));
}

HWY_INLINE VI16 swapHalves(VI16 v) { return hn::Reverse2(di16, v); }

HWY_INLINE void findCorners(const Steps& steps, const Places& places, Corners& corners, int i) {
  const Located red = locate<kRed>(places.blueRed, steps.cells);
  const Located green = locate<kGreen>(places.blueGreen, steps.cells);
  const VI32 back = addProducts(red.cells, steps.blueRed, green.cells, steps.blueGreen);
  static_assert(sizeof(lut::Diagonal) == 1 << 4);
  const VI32 cell = hn::ShiftLeft<4>(hn::Sub(steps.front, back));

  // In the halves: blue, and the greater or lesser of the others.
  const VI16 greater = hn::Max(red.parts, green.parts), greaterSwapped = swapHalves(greater);
  const VI16 lesser = hn::Min(red.parts, green.parts), lesserSwapped = swapHalves(lesser);
  const VI16 most = hn::Max(greater, greaterSwapped), least = hn::Min(lesser, lesserSwapped);
  const VI16 middle = hn::Max(hn::OddEven(lesser, lesserSwapped), hn::Min(greater, greaterSwapped));
  // 32768 in 16 bits; what is subtracted from it is not 0.
  const VI16 whole = hn::Set(di16, std::int16_t{-(1 << kPartBits)});
  const VI16 cellWeights = hn::OddEven(least, hn::Sub(whole, most));
  const VI16 stepWeights = hn::Sub(hn::OddEven(middle, most), hn::OddEven(least, middle));

  const auto offset = [](VI32 v) HWY_ATTR { return hn::BitCast(du32, v); };
  hn::Store(offset(cell), du32, corners.cell + i);
  hn::Store(offset(hn::Add(cell, bytesAlong(most, steps))), du32, corners.stepOn + i);
  hn::Store(offset(hn::Sub(cell, bytesAlong(least, steps))), du32, corners.stepBack + i);
  hn::Store(hn::BitCast(di32, cellWeights), di32, corners.cellWeights + i);
  hn::Store(hn::BitCast(di32, stepWeights), di32, corners.stepWeights + i);
}

// Of the first and every fourth pixel, one to a block of 128 bits.
template <int kPixels = kLanes / 4>
HWY_INLINE auto endsOf(const std::uint8_t* diagonals, const std::uint32_t* offsets) {
  constexpr hn::FixedTag<std::int16_t, 8 * kPixels> d{};
  if constexpr (kPixels == 1) {
    return hn::Load(d, reinterpret_cast<const std::int16_t*>(diagonals + *offsets));
  } else {
    return hn::Combine(d, endsOf<kPixels / 2>(diagonals, offsets + 2 * kPixels),
                       endsOf<kPixels / 2>(diagonals, offsets));
  }
}

template <int kPixel>
HWY_INLINE VI16 weightsOf(const std::int32_t* pairs) {
  return hn::BitCast(di16, hn::Broadcast<kPixel>(hn::Load(di32, pairs)));
}

// Levels of pixel kPixel and of every fourth from there, a block to each.
template <int kPixel>
HWY_INLINE VI32 mixEveryFourth(const std::uint8_t* diagonals, const Corners& corners, int i) {
  const int at = i + kPixel;
  const VI16 steps =
      hn::OddEven(endsOf(diagonals, corners.stepBack + at), endsOf(diagonals, corners.stepOn + at));
  return hn::ShiftRight<kPartBits + lut::kNodeBits>(
      addProducts(endsOf(diagonals, corners.cell + at), weightsOf<kPixel>(corners.cellWeights + i),
                  steps, weightsOf<kPixel>(corners.stepWeights + i)));
}

// Lanes of a, then of b, in every block of 128 bits.
HWY_INLINE VI16 demoteTwo(VI32 a, VI32 b) {
#if HWY_ARCH_X86
  return hn::ReorderDemote2To(di16, a, b);
#else
  constexpr hn::Half<DI16> dHalf{};
  return hn::Combine(di16, hn::DemoteTo(dHalf, b), hn::DemoteTo(dHalf, a));
#endif
}

HWY_INLINE void mixBlock(const std::uint8_t* diagonals, const Corners& corners,
                         std::uint8_t* pixels) {
  alignas(16) static constexpr std::uint8_t kHalves[16] = {0, 2, 4, 6, 8, 10, 12, 14,
                                                           1, 3, 5, 7, 9, 11, 13, 15};
  const V8 alpha = hn::BitCast(d8, hn::Set(du32, 0xFF000000u));
  for (int i = 0; i < kBlock; i += kLanes, pixels += 4 * kLanes) {
    const VI16 low = demoteTwo(mixEveryFourth<0>(diagonals, corners, i),
                               mixEveryFourth<1>(diagonals, corners, i));
    const VI16 high = demoteTwo(mixEveryFourth<2>(diagonals, corners, i),
                                mixEveryFourth<3>(diagonals, corners, i));
    const V8 mixed = joinClamped(low, high, hn::LoadDup128(d8, kHalves));
    // Diagonals have 0 where pixels have alpha.
    hn::StoreU(hn::OrAnd(mixed, hn::LoadU(d8, pixels), alpha), d8, pixels);
  }
}

template <class PlacesAt>
HWY_INLINE void mixRow(const lut::Grid& grid, std::uint8_t* pixels, int count, PlacesAt placesAt) {
  const Steps steps(grid);
  const auto* const diagonals =
      reinterpret_cast<const std::uint8_t*>(grid.diagonals - grid.size * grid.size);
  const auto find = [&](const std::uint8_t* at, Corners& corners) HWY_ATTR {
    for (int i = 0; i < kBlock; i += kLanes) {
      findCorners(steps, placesAt(at + 4 * i), corners, i);
    }
  };
  Corners corners[2];
  const int blocks = count / kBlock;
  if (blocks > 0) find(pixels, corners[0]);
  for (int block = 0; block < blocks; ++block, pixels += 4 * kBlock) {
    if (block + 1 < blocks) find(pixels + 4 * kBlock, corners[(block + 1) % 2]);
    mixBlock(diagonals, corners[block % 2], pixels);
  }
  const auto rest = static_cast<std::size_t>(4 * (count % kBlock));
  if (rest == 0) return;
  std::uint8_t tail[4 * kBlock] = {};
  std::memcpy(tail, pixels, rest);
  find(tail, corners[0]);
  mixBlock(diagonals, corners[0], tail);
  std::memcpy(pixels, tail, rest);
}

void applyGrid(const lut::Grid& grid, std::uint8_t* pixels, int count) {
  if (grid.places == nullptr) {
    mixRow(grid, pixels, count, [](const std::uint8_t* at) HWY_ATTR { return placesOf(at); });
  } else {
    mixRow(grid, pixels, count,
           [&grid](const std::uint8_t* at) HWY_ATTR { return placesOf(at, grid.places); });
  }
}

}  // namespace

const Tetrahedra kTetrahedra = applyGrid;

}  // namespace lumora::HWY_NAMESPACE
