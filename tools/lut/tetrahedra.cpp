#include "lut/tetrahedra.h"

#include <cstring>

#include "hwy/highway.h"

namespace lumora::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using DF = hn::ScalableTag<float>;
using DI = hn::Repartition<std::int32_t, DF>;
using VF = hn::Vec<DF>;
using VI = hn::Vec<DI>;
constexpr DF df{};
constexpr DI di{};
constexpr int kLanes = static_cast<int>(hn::MaxLanes(df));

// Two pixels, four channels each.
constexpr hn::FixedTag<std::int16_t, 8> dPair{};
constexpr hn::FixedTag<std::int16_t, 4> dNode{};
constexpr hn::FixedTag<std::uint8_t, 16> dBytes{};
using VPair = hn::Vec<decltype(dPair)>;

// Where the corners of some pixels are, and their weights: 1/32768, the four of a pixel add up
// to 1.
struct Corners {
  alignas(64) std::int32_t first[kLanes];   // the cell's darkest corner
  alignas(64) std::int32_t second[kLanes];  // one step on, along the channel of the greatest part
  alignas(64) std::int32_t third[kLanes];   // two steps on
  alignas(64) std::int32_t lowWeights[kLanes];   // of the first and, 16 bits up, of the second
  alignas(64) std::int32_t highWeights[kLanes];  // of the third and the brightest corner
};

// Parts of the way from node to node are counted in 1/4096.
constexpr int kPartBits = 12;
constexpr int kWhole = 1 << kPartBits;
// A float of this size has a step of 1: added to a number it leaves it rounded in the lowest bits.
constexpr float kRounding = 12582912.0F;
constexpr std::int32_t kRoundingBits = 0x4B400000;

struct Place {
  VI cell;
  VI part;  // of the way to the next node
};

template <int kShift>
HWY_INLINE Place placeOf(VI pixels, const lut::Grid& grid) {
  constexpr int kChannel = kShift / 8;
  const VI level = hn::And(hn::ShiftRight<kShift>(pixels), hn::Set(di, 255));
  const VF at = hn::MulAdd(hn::ConvertTo(df, level), hn::Set(df, grid.scale[kChannel] * kWhole),
                           hn::Set(df, grid.offset[kChannel] * kWhole + kRounding));
  // The last node is missed by one part, so that it belongs to the last cell.
  const float last = static_cast<float>((grid.size - 1) * kWhole - 1) + kRounding;
  const VF held = hn::Min(hn::Max(at, hn::Set(df, kRounding)), hn::Set(df, last));
  const VI parts = hn::Sub(hn::BitCast(di, held), hn::Set(di, kRoundingBits));
  return {hn::ShiftRight<kPartBits>(parts), hn::And(parts, hn::Set(di, kWhole - 1))};
}

// Two weights of 0..4096 in a lane, as 1/32768. 1 becomes 32767, the greatest that 16 bits hold:
// 1/128 of a level is lost there.
HWY_INLINE VI joinWeights(VI low, VI high) {
  constexpr hn::Repartition<std::uint16_t, DI> d16{};
  const VI both = hn::ShiftLeft<15 - kPartBits>(hn::Or(low, hn::ShiftLeft<16>(high)));
  return hn::BitCast(di, hn::Min(hn::BitCast(d16, both), hn::Set(d16, std::uint16_t{32767})));
}

HWY_INLINE void findCorners(const lut::Grid& grid, VI pixels, Corners& corners) {
  const Place r = placeOf<0>(pixels, grid), g = placeOf<8>(pixels, grid);
  const Place b = placeOf<16>(pixels, grid);
  const VI one = hn::Set(di, 1), row = hn::Set(di, grid.size);
  const VI plane = hn::Set(di, grid.size * grid.size);
  const VI first = hn::Add(hn::Add(r.cell, hn::Mul(g.cell, row)), hn::Mul(b.cell, plane));

  // Which channel is ahead of which; where two are equal, either order gives the same mixture.
  const auto rg = hn::Gt(r.part, g.part), gb = hn::Gt(g.part, b.part), rb = hn::Gt(r.part, b.part);
  const VI greatestStep =
      hn::IfThenElse(rg, hn::IfThenElse(rb, one, plane), hn::IfThenElse(gb, row, plane));
  const VI leastStep =
      hn::IfThenElse(rg, hn::IfThenElse(gb, plane, row), hn::IfThenElse(rb, plane, one));
  const VI last = hn::Add(first, hn::Set(di, 1 + grid.size + grid.size * grid.size));

  const VI greater = hn::Max(r.part, g.part), smaller = hn::Min(r.part, g.part);
  const VI most = hn::Max(greater, b.part), least = hn::Min(smaller, b.part);
  const VI middle = hn::Max(smaller, hn::Min(greater, b.part));
  hn::Store(first, di, corners.first);
  hn::Store(hn::Add(first, greatestStep), di, corners.second);
  hn::Store(hn::Sub(last, leastStep), di, corners.third);
  hn::Store(joinWeights(hn::Sub(hn::Set(di, kWhole), most), hn::Sub(most, middle)), di,
            corners.lowWeights);
  hn::Store(joinWeights(hn::Sub(middle, least), least), di, corners.highWeights);
}

HWY_INLINE VPair nodesAt(const lut::Node* nodes, const std::int32_t* two) {
  const auto low = hn::LoadU(dNode, nodes[two[0]].channels);
  const auto high = hn::LoadU(dNode, nodes[two[1]].channels);
  return hn::Combine(dPair, high, low);
}

// The low (0) or high (1) weight of each of two pixels, for its four channels.
template <int kHalf>
HWY_INLINE VPair weightsOf(const std::int32_t* two) {
  constexpr std::uint8_t l = 2 * kHalf, h = l + 1;
  alignas(16) static constexpr std::uint8_t kSpread[16] = {
      l, h, l, h, l, h, l, h, l + 4, h + 4, l + 4, h + 4, l + 4, h + 4, l + 4, h + 4};
  constexpr hn::FixedTag<std::int32_t, 2> dTwo{};
  constexpr hn::FixedTag<std::int32_t, 4> dFour{};
  const auto weights = hn::ZeroExtendVector(dFour, hn::LoadU(dTwo, two));
  return hn::BitCast(dPair,
                     hn::TableLookupBytes(hn::BitCast(dBytes, weights), hn::Load(dBytes, kSpread)));
}

// In 1/64 levels: each product is off by half of one at most.
HWY_INLINE VPair mixPair(const lut::Node* nodes, int lastStep, const Corners& corners, int i) {
  const auto weighed = [](VPair node, VPair weight)
                           HWY_ATTR { return hn::MulFixedPoint15(node, weight); };
  const VPair dark =
      hn::Add(weighed(nodesAt(nodes, corners.first + i), weightsOf<0>(corners.lowWeights + i)),
              weighed(nodesAt(nodes, corners.second + i), weightsOf<1>(corners.lowWeights + i)));
  const VPair bright = hn::Add(
      weighed(nodesAt(nodes, corners.third + i), weightsOf<0>(corners.highWeights + i)),
      weighed(nodesAt(nodes + lastStep, corners.first + i), weightsOf<1>(corners.highWeights + i)));
  const VPair sum = hn::Add(dark, bright);
  return hn::ShiftRight<lut::kNodeBits>(
      hn::Add(sum, hn::Set(dPair, std::int16_t{1 << (lut::kNodeBits - 1)})));
}

// kLanes pixels. Results are stored pair by pair where they belong: collected for one wide store
// they would have to be read back before they have arrived.
HWY_INLINE void mixVector(const lut::Grid& grid, std::uint8_t* pixels) {
  Corners corners;
  findCorners(grid, hn::BitCast(di, hn::LoadU(hn::Repartition<std::uint8_t, DF>(), pixels)),
              corners);
  const int lastStep = 1 + grid.size + grid.size * grid.size;
  constexpr hn::FixedTag<std::uint8_t, 8> dHalf{};
  constexpr hn::Repartition<std::uint32_t, decltype(dHalf)> dTwo{};
  const auto alpha = hn::BitCast(dHalf, hn::Set(dTwo, 0xFF000000u));
  for (int i = 0; i < kLanes; i += 2) {
    std::uint8_t* const at = pixels + 4 * i;
    const VPair pair = mixPair(grid.nodes, lastStep, corners, i);
    // Nodes have 0 where pixels have alpha.
    const auto kept = hn::And(hn::LoadU(dHalf, at), alpha);
    hn::StoreU(hn::Or(hn::DemoteTo(dHalf, pair), kept), dHalf, at);
  }
}

void mixPixels(const lut::Grid& grid, std::uint8_t* pixels, int count) {
  int x = 0;
  for (; x + kLanes <= count; x += kLanes) mixVector(grid, pixels + 4 * x);
  if (x == count) return;
  std::uint8_t tail[4 * kLanes] = {};
  const auto bytes = static_cast<std::size_t>(4 * (count - x));
  std::memcpy(tail, pixels + 4 * x, bytes);
  mixVector(grid, tail);
  std::memcpy(pixels + 4 * x, tail, bytes);
}

}  // namespace

const Tetrahedra kTetrahedra = mixPixels;

}  // namespace lumora::HWY_NAMESPACE
