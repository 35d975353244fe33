// Each row is run forward and backward, then each column; floats are kept between the runs. A run
// waits for its own last output all the time, so kAbreast vectors of rows or columns go side by
// side. Rows are turned into columns of vectors on their way in and back on their way out.
#include "effects/smoothing/gaussian_kernel.h"

#include <string.h>

#include "effects/pyramid/prefetch.h"
#include "hwy/highway.h"

namespace lumora::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// Wider vectors would be too few abreast to keep the processor busy.
using DF = hn::CappedTag<float, 8>;
using VF = hn::Vec<DF>;
using DF4 = hn::Simd<float, 4, 0>;  // the 4 x 4 blocks of the transposition
using VF4 = hn::Vec<DF4>;
inline constexpr DF df{};
inline constexpr DF4 df4{};
constexpr int kLanes = static_cast<int>(hn::MaxLanes(df));

constexpr int kAbreast = 6;
constexpr int kLines = kAbreast * kLanes;  // rows or columns that go side by side
constexpr int kTile = 16;                  // columns that are turned at a time, a multiple of 4

// Black enters as 2^-64, too little to show beside any other sample: so the runs fade to that and
// never into denormal numbers, which most processors take long for and 32-bit NEON flushes to 0.
constexpr float kAlmostBlack = 1.0f / (1ull << 32) / (1ull << 32);

// kLines runs side by side. Each output is the sum of four products in the order of the formula,
// none of them fused. The last outputs stay in registers, the two before them are read back from
// where they were put, or from `seeds` when the runs have only begun.
class Runs {
 public:
  HWY_INLINE Runs(const GaussianCoefficients& c, float* seeds)
      : input_(hn::Set(df, c.input)),
        back1_(hn::Set(df, c.back1)),
        back2_(hn::Set(df, c.back2)),
        back3_(hn::Set(df, c.back3)),
        seeds_(seeds) {}

  // The outputs before the first are taken to equal the first input.
  HWY_INLINE void seed(const float* first) {
    for (int k = 0; k < kAbreast; ++k) {
      y1_[k] = hn::LoadU(df, first + k * kLanes);
      hn::Store(y1_[k], df, seeds_ + k * kLanes);
    }
  }

  // Output n of each run; `step` is the distance in floats from the outputs n to the outputs n + 1.
  HWY_INLINE void advance(int n, const float* in, float* out, int step) {
    const float* const y2 = n < 2 ? seeds_ : out - 2 * step;
    const float* const y3 = n < 3 ? seeds_ : out - 3 * step;
    for (int k = 0; k < kAbreast; ++k) {
      const int lane = k * kLanes;
      const VF own = hn::Mul(input_, hn::LoadU(df, in + lane));
      const VF two = hn::Add(own, hn::Mul(back1_, y1_[k]));
      const VF three = hn::Add(two, hn::Mul(back2_, hn::LoadU(df, y2 + lane)));
      y1_[k] = hn::Add(three, hn::Mul(back3_, hn::LoadU(df, y3 + lane)));
      hn::StoreU(y1_[k], df, out + lane);
    }
  }

  HWY_INLINE VF last(int k) const { return y1_[k]; }

 private:
  VF input_, back1_, back2_, back3_;
  VF y1_[kAbreast];
  float* seeds_;
};

HWY_INLINE void transpose(VF4& a, VF4& b, VF4& c, VF4& d) {
  const VF4 abLow = hn::InterleaveLower(df4, a, b), abHigh = hn::InterleaveUpper(df4, a, b);
  const VF4 cdLow = hn::InterleaveLower(df4, c, d), cdHigh = hn::InterleaveUpper(df4, c, d);
  a = hn::ConcatLowerLower(df4, cdLow, abLow);
  b = hn::ConcatUpperUpper(df4, cdLow, abLow);
  c = hn::ConcatLowerLower(df4, cdHigh, abHigh);
  d = hn::ConcatUpperUpper(df4, cdHigh, abHigh);
}

// `count` samples of a row, 4 or what is left of it.
HWY_INLINE VF4 loadSamples(const std::uint8_t* row, int count) {
  const hn::Simd<std::uint8_t, 4, 0> d8x4;
  const hn::Simd<std::int32_t, 4, 0> di32x4;
  std::uint8_t rest[4] = {};
  if (count < 4) memcpy(rest, row, static_cast<size_t>(count));
  const auto bytes = hn::LoadU(d8x4, count < 4 ? rest : row);
  const VF4 samples = hn::ConvertTo(df4, hn::PromoteTo(di32x4, bytes));
  return hn::Max(samples, hn::Set(df4, kAlmostBlack));
}

HWY_INLINE void storeSamples(VF4 samples, float* row, int count) {
  if (count == 4) {
    hn::StoreU(samples, df4, row);
    return;
  }
  HWY_ALIGN float rest[4];
  hn::Store(samples, df4, rest);
  memcpy(row, rest, sizeof(float) * static_cast<size_t>(count));
}

// Where sample x of row firstRow + i lies; the last row stands in for those behind it.
HWY_INLINE size_t sampleAt(const GaussianPlane& plane, int firstRow, int i, int x) {
  const int y = HWY_MIN(firstRow + i, plane.height - 1);
  return static_cast<size_t>(y) * static_cast<size_t>(plane.width) + static_cast<size_t>(x);
}

// The columns [x, x + count) of a block of rows, one column of kLines floats after the other. Up to
// three columns more are filled.
void turnIn(const GaussianPlane& plane, int firstRow, int x, int count, float* turned) {
  for (int i = 0; i < kLines; i += 4) {
    const std::uint8_t* rows[4];
    for (int r = 0; r < 4; ++r) {
      rows[r] = plane.in + sampleAt(plane, firstRow, i + r, x);
      prefetch(rows[r] + kCacheLineBytes, 1);
    }
    for (int column = 0; column < count; column += 4) {
      const int left = HWY_MIN(4, count - column);
      VF4 a = loadSamples(rows[0] + column, left), b = loadSamples(rows[1] + column, left);
      VF4 c = loadSamples(rows[2] + column, left), d = loadSamples(rows[3] + column, left);
      transpose(a, b, c, d);
      float* const out = turned + column * kLines + i;
      hn::StoreU(a, df4, out);
      hn::StoreU(b, df4, out + kLines);
      hn::StoreU(c, df4, out + 2 * kLines);
      hn::StoreU(d, df4, out + 3 * kLines);
    }
  }
}

// The way back, into the rows of floats at the start of the work memory.
void turnOut(const GaussianPlane& plane, int firstRow, int x, int count, const float* turned) {
  for (int i = 0; i < kLines; i += 4) {
    float* rows[4];
    for (int r = 0; r < 4; ++r) rows[r] = plane.work + sampleAt(plane, firstRow, i + r, x);
    for (int column = 0; column < count; column += 4) {
      const int left = HWY_MIN(4, count - column);
      const float* const in = turned + column * kLines + i;
      VF4 a = hn::LoadU(df4, in), b = hn::LoadU(df4, in + kLines);
      VF4 c = hn::LoadU(df4, in + 2 * kLines), d = hn::LoadU(df4, in + 3 * kLines);
      transpose(a, b, c, d);
      storeSamples(a, rows[0] + column, left);
      storeSamples(b, rows[1] + column, left);
      storeSamples(c, rows[2] + column, left);
      storeSamples(d, rows[3] + column, left);
    }
  }
}

// kLines rows of bytes to rows of floats, both runs in place in `turned`.
void smoothRows(const GaussianPlane& plane, int firstRow, float* turned) {
  HWY_ALIGN float seeds[kLines];
  Runs runs(plane.coefficients, seeds);
  for (int x = 0; x < plane.width; x += kTile) {
    const int end = HWY_MIN(x + kTile, plane.width);
    turnIn(plane, firstRow, x, end - x, turned + x * kLines);
    if (x == 0) runs.seed(turned);
    for (int i = x; i < end; ++i) {
      runs.advance(i, turned + i * kLines, turned + i * kLines, kLines);
    }
  }
  const int last = plane.width - 1;
  runs.seed(turned + last * kLines);
  for (int x = last / kTile * kTile; x >= 0; x -= kTile) {
    const int end = HWY_MIN(x + kTile, plane.width);
    for (int i = end - 1; i >= x; --i) {
      runs.advance(last - i, turned + i * kLines, turned + i * kLines, -kLines);
    }
    turnOut(plane, firstRow, x, end - x, turned + x * kLines);
  }
}

// Clamped, then rounded by adding a half.
HWY_INLINE void storeBytes(VF samples, std::uint8_t* out) {
  const hn::Rebind<std::int32_t, DF> di32;
  const hn::Rebind<std::uint8_t, DF> d8;
  const VF clamped = hn::Min(hn::Max(samples, hn::Zero(df)), hn::Set(df, 255.0f));
  const auto rounded = hn::ConvertTo(di32, hn::Add(clamped, hn::Set(df, 0.5f)));
  hn::StoreU(hn::DemoteTo(d8, rounded), d8, out);
}

// kLines columns of floats to bytes; `block` holds the runs, row after row.
void smoothColumns(const GaussianPlane& plane, int x, float* block) {
  HWY_ALIGN float seeds[kLines];
  Runs runs(plane.coefficients, seeds);
  runs.seed(plane.work + x);
  for (int y = 0; y < plane.height; ++y) {
    runs.advance(y, plane.work + sampleAt(plane, y, 0, x), block + y * kLines, kLines);
  }
  const int last = plane.height - 1;
  runs.seed(block + last * kLines);
  for (int y = last; y >= 0; --y) {
    runs.advance(last - y, block + y * kLines, block + y * kLines, -kLines);
    std::uint8_t* const out = plane.out + sampleAt(plane, y, 0, x);
    for (int k = 0; k < kAbreast; ++k) storeBytes(runs.last(k), out + k * kLanes);
  }
}

// The floats take the first half of the work memory, the runs of one block the second: kLines
// columns of the plane, or kLines rows turned, with the three columns that may be filled in
// addition.
static_assert(kLines <= kGaussianMinExtent &&
              kLines * (kGaussianMinExtent + 3) <= kGaussianMinExtent * kGaussianMinExtent);

// The last block of columns ends where the plane does; what it shares with the one before is done
// twice.
void smooth(const GaussianPlane& plane) {
  float* const block = plane.work + static_cast<size_t>(plane.width) * plane.height;
  for (int y = 0; y < plane.height; y += kLines) smoothRows(plane, y, block);
  for (int x = 0; x < plane.width; x += kLines) {
    smoothColumns(plane, HWY_MIN(x, plane.width - kLines), block);
  }
}

}  // namespace

const GaussianKernel kGaussian = smooth;

}  // namespace lumora::HWY_NAMESPACE
