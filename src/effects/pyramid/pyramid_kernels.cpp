#include "effects/pyramid/pyramid_kernels.h"

#include "effects/pyramid/prefetch.h"
#include "pixels/row_walk.h"
#include "pixels/vectors.h"

namespace lumora::HWY_NAMESPACE {
namespace {

using DHalf = hn::Half<D8>;
using DU32 = hn::Repartition<std::uint32_t, D8>;
inline constexpr DHalf dHalf{};
inline constexpr DU32 du32{};
constexpr int kLanes16 = kLanes8 / 2;

// 2 x kLanes8 pixels in, kLanes8 samples of each channel out.
HWY_INLINE void subsample(const std::uint8_t* pixels, std::uint8_t* red, std::uint8_t* green,
                          std::uint8_t* blue) {
  HWY_ALIGN std::uint8_t odd[4 * kLanes8];
  for (int i = 0; i < 4; ++i) {
    const auto low = hn::BitCast(du32, hn::LoadU(d8, pixels + 2 * i * kLanes8));
    const auto high = hn::BitCast(du32, hn::LoadU(d8, pixels + (2 * i + 1) * kLanes8));
    hn::Store(hn::BitCast(d8, hn::ConcatOdd(du32, high, low)), d8, odd + i * kLanes8);
  }
  V8 r, g, b, alpha;
  hn::LoadInterleaved4(d8, odd, r, g, b, alpha);
  hn::StoreU(r, d8, red);
  hn::StoreU(g, d8, green);
  hn::StoreU(b, d8, blue);
}

void subsampleRgba(const std::uint8_t* pixels, std::ptrdiff_t ahead, int widthPixels,
                   std::uint8_t* red, std::uint8_t* green, std::uint8_t* blue) {
  const int pairs = widthPixels / 2;
  walkRow<kLanes8>(
      pairs,
      [&](std::ptrdiff_t x, const std::uint8_t* at) {
        prefetch(pixels + ahead + 8 * x, 8 * kLanes8);
        subsample(at, red + x, green + x, blue + x);
      },
      Reads<8>{pixels});
  if (widthPixels % 2 == 0) return;
  const std::uint8_t* const last = pixels + std::ptrdiff_t{8} * pairs;
  red[pairs] = last[0];
  green[pairs] = last[1];
  blue[pairs] = last[2];
}

void splitPairs(const std::uint8_t* pairs, std::ptrdiff_t ahead, int count, std::uint8_t* first,
                std::uint8_t* second) {
  walkRow<kLanes8>(
      count,
      [&](std::ptrdiff_t x, const std::uint8_t* at) {
        prefetch(pairs + ahead + 2 * x, 2 * kLanes8);
        V8 a, b;
        hn::LoadInterleaved2(d8, at, a, b);
        hn::StoreU(a, d8, first + x);
        hn::StoreU(b, d8, second + x);
      },
      Reads<2>{pairs});
}

// The means of the 2 x 2 blocks in the even bytes.
HWY_INLINE V8 blockMeans(const std::uint8_t* top, const std::uint8_t* bottom) {
  const V8 a = hn::LoadU(d8, top), b = hn::LoadU(d8, bottom);
  const V8 aOdd = hn::BitCast(d8, hn::ShiftRight<8>(hn::BitCast(du16, a)));
  const V8 bOdd = hn::BitCast(d8, hn::ShiftRight<8>(hn::BitCast(du16, b)));
  return hn::AverageRound(hn::AverageRound(a, aOdd), hn::AverageRound(b, bOdd));
}

void halveRows(const std::uint8_t* top, const std::uint8_t* bottom, std::ptrdiff_t ahead, int count,
               std::uint8_t* out) {
  walkRow<kLanes8>(
      count,
      [&](std::ptrdiff_t x, const std::uint8_t* upper, const std::uint8_t* lower) {
        prefetch(top + ahead + 2 * x, 2 * kLanes8);
        prefetch(bottom + ahead + 2 * x, 2 * kLanes8);
        const V8 low = blockMeans(upper, lower);
        const V8 high = blockMeans(upper + kLanes8, lower + kLanes8);
        hn::StoreU(hn::ConcatEven(d8, high, low), d8, out + x);
      },
      Reads<2>{top}, Reads<2>{bottom});
}

// 3 near + far, at most 1020.
HWY_INLINE VU16 column(const std::uint8_t* near, const std::uint8_t* far) {
  const VU16 n = hn::PromoteTo(du16, hn::LoadU(dHalf, near));
  const VU16 f = hn::PromoteTo(du16, hn::LoadU(dHalf, far));
  return hn::Add(hn::Add(hn::Add(n, n), n), f);
}

// (9 a + 3 b + 3 c + d + 8) >> 4 is (3 column(a, b) + column(c, d) + 8) >> 4, at most 4088 >> 4.
void doubleRow(const std::uint8_t* near, const std::uint8_t* far, int count, std::uint8_t* out) {
  const VU16 half = hn::Set(du16, 8);
  for (int x = 0; x < count; x += kLanes16) {
    const VU16 before = column(near + x - 1, far + x - 1);
    const VU16 own = column(near + x, far + x);
    const VU16 behind = column(near + x + 1, far + x + 1);
    const VU16 nearer = hn::Add(hn::Add(hn::Add(own, own), own), half);
    const VU16 even = hn::ShiftRight<4>(hn::Add(nearer, before));
    const VU16 odd = hn::ShiftRight<4>(hn::Add(nearer, behind));
    hn::StoreU(hn::BitCast(d8, hn::Or(even, hn::ShiftLeft<8>(odd))), d8, out + 2 * x);
  }
}

}  // namespace

const PyramidKernels kPyramid = {subsampleRgba, splitPairs, halveRows, doubleRow};

}  // namespace lumora::HWY_NAMESPACE
