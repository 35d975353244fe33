#include "effects/mosaic/mosaic_kernel.h"

#include "pixels/vectors.h"

namespace lumora::HWY_NAMESPACE {
namespace {

// Half a vector of bytes widens to a vector of sums, in the order of the row.
constexpr hn::Half<D8> dHalf8{};
constexpr int kSumLanes = kLanes8 / 2;

// Adds kRows rows to the sums, or makes these the sums. Several rows at once spare the sums a trip
// to memory for each.
template <int kRows, bool kIsFirst = false>
void addRows(const std::uint8_t* first, std::ptrdiff_t strideBytes, int rowBytes,
             std::uint16_t* sums) {
  int x = 0;
  for (; x + kSumLanes <= rowBytes; x += kSumLanes) {
    VU16 sum = kIsFirst ? hn::Zero(du16) : hn::LoadU(du16, sums + x);
    for (int y = 0; y < kRows; ++y) {
      const auto bytes = hn::LoadU(dHalf8, first + y * strideBytes + x);
      sum = hn::Add(sum, hn::PromoteTo(du16, bytes));
    }
    hn::StoreU(sum, du16, sums + x);
  }
  for (; x < rowBytes; ++x) {
    if (kIsFirst) sums[x] = 0;
    for (int y = 0; y < kRows; ++y) {
      sums[x] = static_cast<std::uint16_t>(sums[x] + first[y * strideBytes + x]);
    }
  }
}

void columnSums(const std::uint8_t* firstRow, std::ptrdiff_t strideBytes, int rows, int rowBytes,
                std::uint16_t* sums) {
  int y = rows < 4 ? 1 : 4;
  (y == 1 ? addRows<1, true> : addRows<4, true>)(firstRow, strideBytes, rowBytes, sums);
  for (; y + 4 <= rows; y += 4) {
    addRows<4>(firstRow + y * strideBytes, strideBytes, rowBytes, sums);
  }
  for (; y < rows; ++y) addRows<1>(firstRow + y * strideBytes, strideBytes, rowBytes, sums);
}

}  // namespace

const ColumnSums kColumnSums = columnSums;

}  // namespace lumora::HWY_NAMESPACE
