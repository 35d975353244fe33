// The walk along a row, with the row's end. Level sources only.
//
// Work is done on whole vectors of pixels. The last, incomplete one goes through blocks on the
// stack: the bytes that are left are copied in, worked on as a full vector, and copied back.
// Nothing outside a row's own pixels is read or written.
#pragma once

#include <string.h>

#include <cstddef>
#include <cstdint>

#include "hwy/highway.h"

namespace lumora::HWY_NAMESPACE {

// A row that a walk goes along, kPixelBytes a pixel; none at all for 0.
template <int kPixelBytes>
struct Reads {
  const std::uint8_t* row;
  HWY_INLINE const std::uint8_t* at(std::ptrdiff_t x) const { return row + x * kPixelBytes; }
};
template <int kPixelBytes>
struct Changes {
  std::uint8_t* row;
  HWY_INLINE std::uint8_t* at(std::ptrdiff_t x) const { return row + x * kPixelBytes; }
};
template <int kPixelBytes>
struct Writes {
  std::uint8_t* row;
  HWY_INLINE std::uint8_t* at(std::ptrdiff_t x) const { return row + x * kPixelBytes; }
};

// Called at the ends of rows alone; spread out in the walks it would take registers from their
// work.
HWY_NOINLINE inline void copyEnd(std::uint8_t* to, const std::uint8_t* from, size_t bytes) {
  memcpy(to, from, bytes);
}

// The end of a row as kPixels pixels, the missing ones 0.
template <int kPixels, int kPixelBytes>
class RowEnd {
 public:
  // User-provided: a row without an end does not pay for clearing the block.
  HWY_INLINE RowEnd() {}

  template <class Row>
  HWY_INLINE std::uint8_t* load(const Row& row, std::ptrdiff_t x, std::ptrdiff_t left) {
    memset(block_, 0, sizeof block_);
    // A row of nothing has no address.
    if constexpr (kPixelBytes > 0) copyEnd(block_, row.at(x), bytes(left));
    return block_;
  }
  HWY_INLINE std::uint8_t* load(const Writes<kPixelBytes>&, std::ptrdiff_t, std::ptrdiff_t) {
    return block_;
  }

  HWY_INLINE void store(const Reads<kPixelBytes>&, std::ptrdiff_t, std::ptrdiff_t) const {}
  template <class Row>
  HWY_INLINE void store(const Row& row, std::ptrdiff_t x, std::ptrdiff_t left) const {
    copyEnd(row.at(x), block_, bytes(left));
  }

 private:
  static HWY_INLINE size_t bytes(std::ptrdiff_t pixels) {
    return static_cast<size_t>(pixels) * kPixelBytes;
  }
  HWY_ALIGN std::uint8_t block_[kPixelBytes > 0 ? kPixels* kPixelBytes : 1];
};

// Calls work(x, place...) for every kPixels pixels, x being the first of them and the places where
// they lie in each of the rows. The call stands in the loop once, which keeps what the work holds
// in registers.
template <int kPixels, class Work, template <int> class... Row, int... kPixelBytes>
HWY_INLINE void walkRow(std::ptrdiff_t pixels, const Work& work, const Row<kPixelBytes>&... rows) {
  const auto walk = [&](RowEnd<kPixels, kPixelBytes>... ends) {
    for (std::ptrdiff_t x = 0, left = pixels; left > 0; x += kPixels, left -= kPixels) {
      const bool isEnd = left < kPixels;
      work(x, (isEnd ? ends.load(rows, x, left) : rows.at(x))...);
      if (isEnd) (ends.store(rows, x, left), ...);
    }
  };
  walk(RowEnd<kPixels, kPixelBytes>()...);
}

}  // namespace lumora::HWY_NAMESPACE
