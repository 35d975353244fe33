// Each row is run forward and backward, then each column; floats are kept between the runs. A run
// waits for its own last output all the time, so kAbreast vectors of rows or columns go side by
// side. Rows are turned into columns of vectors on their way in and back on their way out.
#include "effects/gaussian_kernel.h"

#include <string.h>

#include "effects/prefetch.h"
#include "hwy/highway.h"

namespace lumora::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using DF = hn::ScalableTag<float>;
using VF = hn::Vec<DF>;
using DF4 = hn::Simd<float, 4, 0>;  // the 4 x 4 blocks of the transposition
using VF4 = hn::Vec<DF4>;
inline constexpr DF df{};
inline constexpr DF4 df4{};
constexpr int kLanes = static_cast<int>(hn::MaxLanes(df));

constexpr int kMaxLines = 48;
constexpr int kAbreast = HWY_MIN(6, kMaxLines / kLanes);
constexpr int kLines = kAbreast * kLanes;  // rows or columns that go side by side
constexpr int kTile = 16;                  // columns that are turned at a time

// Black enters as 2^-64, far below what any sum with another sample can hold: so no state ever
// decays into denormal numbers, which most processors take long for and 32-bit NEON flushes to 0.
constexpr float kAlmostBlack = 1.0f / (1ull << 32) / (1ull << 32);

// kLines runs, each over every kLines-th float of `lines`, where the outputs replace the inputs or
// are put in the first place. The last outputs stay in registers, the two before them are read
// back. The sum is taken in its written order and nothing is fused.
class Runs {
 public:
  HWY_INLINE explicit Runs(const GaussianCoefficients& c)
      : input_(hn::Set(df, c.input)),
        back1_(hn::Set(df, c.back1)),
        back2_(hn::Set(df, c.back2)),
        back3_(hn::Set(df, c.back3)) {}

  // The outputs before the first are taken to equal the first input.
  HWY_INLINE void seed(const float* first) {
    for (int k = 0; k < kAbreast; ++k) {
      const VF x = hn::LoadU(df, first + k * kLanes);
      hn::Store(x, df, seed_ + k * kLanes);
      y1_[k] = x;
    }
  }

  // Output n of the runs, `step` being the distance in floats from an output to the next.
  HWY_INLINE void advance(int n, const float* in, float* out, int step) {
    const float* const y2 = n < 2 ? seed_ : out - 2 * step;
    const float* const y3 = n < 3 ? seed_ : out - 3 * step;
    for (int k = 0; k < kAbreast; ++k) {
      const int lane = k * kLanes;
      const VF recent = hn::Add(hn::Mul(input_, hn::LoadU(df, in + lane)), hn::Mul(back1_, y1_[k]));
      const VF older = hn::Add(recent, hn::Mul(back2_, hn::LoadU(df, y2 + lane)));
      y1_[k] = hn::Add(older, hn::Mul(back3_, hn::LoadU(df, y3 + lane)));
      hn::StoreU(y1_[k], df, out + lane);
    }
  }

  HWY_INLINE VF last(int k) const { return y1_[k]; }

 private:
  VF input_, back1_, back2_, back3_;
  VF y1_[kAbreast];
  HWY_ALIGN float seed_[kLines];
};

HWY_INLINE void transpose(VF4& a, VF4& b, VF4& c, VF4& d) {
  const VF4 abLow = hn::InterleaveLower(df4, a, b), abHigh = hn::InterleaveUpper(df4, a, b);
  const VF4 cdLow = hn::InterleaveLower(df4, c, d), cdHigh = hn::InterleaveUpper(df4, c, d);
  a = hn::ConcatLowerLower(df4, cdLow, abLow);
  b = hn::ConcatUpperUpper(df4, cdLow, abLow);
  c = hn::ConcatLowerLower(df4, cdHigh, abHigh);
  d = hn::ConcatUpperUpper(df4, cdHigh, abHigh);
}

HWY_INLINE VF4 floatsOf(const std::uint8_t* bytes) {
  const hn::Simd<std::uint8_t, 4, 0> d8x4;
  const hn::Simd<std::int32_t, 4, 0> di32x4;
  const VF4 samples = hn::ConvertTo(df4, hn::PromoteTo(di32x4, hn::LoadU(d8x4, bytes)));
  return hn::Max(samples, hn::Set(df4, kAlmostBlack));
}

// Four rows by four columns of a tile whose columns are kLines floats apart.
HWY_INLINE void turnIn(const std::uint8_t* const rows[4], float* tile) {
  VF4 a = floatsOf(rows[0]), b = floatsOf(rows[1]), c = floatsOf(rows[2]), d = floatsOf(rows[3]);
  transpose(a, b, c, d);
  hn::StoreU(a, df4, tile);
  hn::StoreU(b, df4, tile + kLines);
  hn::StoreU(c, df4, tile + 2 * kLines);
  hn::StoreU(d, df4, tile + 3 * kLines);
}

HWY_INLINE void turnOut(const float* tile, float* const rows[4]) {
  VF4 a = hn::LoadU(df4, tile), b = hn::LoadU(df4, tile + kLines);
  VF4 c = hn::LoadU(df4, tile + 2 * kLines), d = hn::LoadU(df4, tile + 3 * kLines);
  transpose(a, b, c, d);
  hn::StoreU(a, df4, rows[0]);
  hn::StoreU(b, df4, rows[1]);
  hn::StoreU(c, df4, rows[2]);
  hn::StoreU(d, df4, rows[3]);
}

// Rows of the block that starts at firstRow; the last row stands in for those behind it.
HWY_INLINE int rowAt(const GaussianPlane& plane, int firstRow, int i) {
  return HWY_MIN(firstRow + i, plane.height - 1);
}

// Columns [x, x + count) of a block of rows, count at most kTile.
void tileIn(const GaussianPlane& plane, int firstRow, int x, int count, float* tile) {
  for (int i = 0; i < kLines; i += 4) {
    const std::uint8_t* rows[4];
    for (int r = 0; r < 4; ++r) {
      rows[r] = plane.in + static_cast<size_t>(rowAt(plane, firstRow, i + r)) * plane.width + x;
      prefetch(rows[r] + kCacheLineBytes, 1);
    }
    int column = 0;
    for (; column + 4 <= count; column += 4) {
      const std::uint8_t* const at[4] = {rows[0] + column, rows[1] + column, rows[2] + column,
                                         rows[3] + column};
      turnIn(at, tile + column * kLines + i);
    }
    if (column == count) continue;
    std::uint8_t rest[4][4] = {};
    for (int r = 0; r < 4; ++r)
      memcpy(rest[r], rows[r] + column, static_cast<size_t>(count - column));
    const std::uint8_t* const at[4] = {rest[0], rest[1], rest[2], rest[3]};
    turnIn(at, tile + column * kLines + i);
  }
}

void tileOut(const GaussianPlane& plane, int firstRow, int x, int count, const float* tile) {
  for (int i = 0; i < kLines; i += 4) {
    float* rows[4];
    for (int r = 0; r < 4; ++r) {
      rows[r] = plane.work + static_cast<size_t>(rowAt(plane, firstRow, i + r)) * plane.width + x;
    }
    int column = 0;
    for (; column + 4 <= count; column += 4) {
      float* const at[4] = {rows[0] + column, rows[1] + column, rows[2] + column, rows[3] + column};
      turnOut(tile + column * kLines + i, at);
    }
    if (column == count) continue;
    float rest[4][4];
    float* const at[4] = {rest[0], rest[1], rest[2], rest[3]};
    turnOut(tile + column * kLines + i, at);
    for (int r = 0; r < 4; ++r) {
      memcpy(rows[r] + column, rest[r], sizeof(float) * static_cast<size_t>(count - column));
    }
  }
}

// kLines rows of bytes to kLines rows of floats at the start of the work memory. `turned` holds the
// runs, one column of kLines floats after the other.
void smoothRows(const GaussianPlane& plane, int firstRow, float* turned) {
  Runs runs(plane.coefficients);
  for (int x = 0; x < plane.width; x += kTile) {
    const int count = HWY_MIN(kTile, plane.width - x);
    float* const tile = turned + x * kLines;
    tileIn(plane, firstRow, x, count, tile);
    if (x == 0) runs.seed(tile);
    for (int i = 0; i < count; ++i) {
      float* const at = tile + i * kLines;
      runs.advance(x + i, at, at, kLines);
    }
  }
  runs.seed(turned + (plane.width - 1) * kLines);
  for (int x = (plane.width - 1) / kTile * kTile; x >= 0; x -= kTile) {
    const int count = HWY_MIN(kTile, plane.width - x);
    float* const tile = turned + x * kLines;
    for (int i = count - 1; i >= 0; --i) {
      float* const at = tile + i * kLines;
      runs.advance(plane.width - 1 - x - i, at, at, -kLines);
    }
    tileOut(plane, firstRow, x, count, tile);
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

// kLines columns of the floats to bytes; `turned` holds the runs, row after row.
void smoothColumns(const GaussianPlane& plane, int x, float* turned) {
  Runs runs(plane.coefficients);
  const float* const top = plane.work + x;
  runs.seed(top);
  for (int y = 0; y < plane.height; ++y) {
    runs.advance(y, top + static_cast<size_t>(y) * plane.width, turned + y * kLines, kLines);
  }
  runs.seed(turned + (plane.height - 1) * kLines);
  for (int y = plane.height - 1; y >= 0; --y) {
    float* const at = turned + y * kLines;
    runs.advance(plane.height - 1 - y, at, at, -kLines);
    std::uint8_t* const out = plane.out + static_cast<size_t>(y) * plane.width + x;
    for (int k = 0; k < kAbreast; ++k) storeBytes(runs.last(k), out + k * kLanes);
  }
}

// The floats take the first half of the work memory, the runs of one block the second. The turned
// columns of a block are up to three more than the plane has.
static_assert(kMaxLines <= kGaussianMinExtent &&
              kMaxLines * (kGaussianMinExtent + 3) <= kGaussianMinExtent * kGaussianMinExtent);

// The last columns end with the plane and are done twice.
void smooth(const GaussianPlane& plane) {
  float* const runs = plane.work + static_cast<size_t>(plane.width) * plane.height;
  for (int y = 0; y < plane.height; y += kLines) smoothRows(plane, y, runs);
  for (int x = 0; x < plane.width; x += kLines) {
    smoothColumns(plane, HWY_MIN(x, plane.width - kLines), runs);
  }
}

}  // namespace

const GaussianKernel kGaussian = smooth;

}  // namespace lumora::HWY_NAMESPACE
