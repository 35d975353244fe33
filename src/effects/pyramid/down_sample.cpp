#include "effects/pyramid/down_sample.h"

#include <cstring>

#include "effects/pyramid/pyramid_kernels.h"
#include "platform/log.h"
#include "platform/stripe_runner.h"

namespace lumora {
namespace {

// (a + b + c + d + 2) >> 2 of a 2 x 2 block whose columns lie `step` bytes apart.
std::uint8_t blockMean(const std::uint8_t* top, const std::uint8_t* bottom, int step) {
  return static_cast<std::uint8_t>((top[0] + top[step] + bottom[0] + bottom[step] + 2) >> 2);
}

// Makes the rows of the levels when they are asked for.
class Reducer {
 public:
  Reducer(const Picture& picture, int levels, std::uint8_t* rowMemory)
      : picture_(picture), rows_(picture.widthPixels, levels, rowMemory) {}

  void makeRow(int level, int y);
  const std::uint8_t* row(int level, int channel, int y) const {
    return rows_.row(level, channel, y);
  }

 private:
  void sampleRgba(int y);
  void averageLastRgba(int y);
  void reduceNv(int y);
  void halve(int level, int y);

  int width(int level) const { return levelExtent(picture_.widthPixels, level); }
  int height(int level) const { return levelExtent(picture_.heightRows, level); }

  const Picture& picture_;
  const PyramidKernels& kernels_ = kPyramid();
  LevelRows rows_;
};

void Reducer::makeRow(int level, int y) {
  if (rows_.holds(level, y)) return;
  if (level > 1) {
    halve(level, y);
  } else if (!picture_.isRgba()) {
    reduceNv(y);
  } else if (2 * y + 1 < picture_.heightRows) {
    sampleRgba(y);
  } else {
    averageLastRgba(y);
  }
  rows_.setHeld(level, y);
}

void Reducer::sampleRgba(int y) {
  kernels_.subsampleRgba(picture_.row(2 * y), 2 * picture_.strideBytes, picture_.widthPixels,
                         rows_.row(1, 0, y), rows_.row(1, 1, y), rows_.row(1, 2, y));
}

// The last row of an odd height: its 2 x 2 blocks end at the picture's last row and column.
void Reducer::averageLastRgba(int y) {
  const std::uint8_t* const top = picture_.row(picture_.heightRows - 2);
  const std::uint8_t* const bottom = picture_.row(picture_.heightRows - 1);
  for (int channel = 0; channel < kChannelCount; ++channel) {
    std::uint8_t* const out = rows_.row(1, channel, y);
    for (int x = 0; x < width(1); ++x) {
      const int left = 2 * x + 1 < picture_.widthPixels ? 2 * x : 2 * x - 1;
      out[x] = blockMean(top + 4 * left + channel, bottom + 4 * left + channel, 4);
    }
  }
}

void Reducer::reduceNv(int y) {
  kernels_.halveRows(picture_.row(2 * y), picture_.row(2 * y + 1), 2 * picture_.strideBytes,
                     width(1), rows_.row(1, 0, y));
  kernels_.splitPairs(picture_.chroma() + y * picture_.strideBytes, picture_.strideBytes, width(1),
                      rows_.row(1, 1, y), rows_.row(1, 2, y));
}

// At an odd last row or column the block is made of the last two rows or columns, and its mean is
// rounded once instead of twice.
void Reducer::halve(int level, int y) {
  const int finer = level - 1;
  const bool pastEnd = 2 * y + 1 == height(finer);
  const int top = pastEnd ? 2 * y - 1 : 2 * y;
  makeRow(finer, top);
  makeRow(finer, top + 1);
  for (int channel = 0; channel < kChannelCount; ++channel) {
    const std::uint8_t* const upper = rows_.row(finer, channel, top);
    const std::uint8_t* const lower = rows_.row(finer, channel, top + 1);
    std::uint8_t* const out = rows_.row(level, channel, y);
    const int pairs = width(finer) / 2;
    if (pastEnd) {
      for (int x = 0; x < pairs; ++x) out[x] = blockMean(upper + 2 * x, lower + 2 * x, 1);
    } else {
      kernels_.halveRows(upper, lower, 0, pairs, out);
    }
    if (width(finer) % 2 != 0)
      out[pairs] = blockMean(upper + 2 * pairs - 1, lower + 2 * pairs - 1, 1);
  }
}

void reduceRows(Reducer& reducer, int level, const Stripe& rows, const PlanarImage& out) {
  const int first = static_cast<int>(rows.first), end = first + static_cast<int>(rows.count);
  for (int y = first; y < end; ++y) {
    reducer.makeRow(level, y);
    for (int channel = 0; channel < kChannelCount; ++channel) {
      std::memcpy(out.row(channel, y), reducer.row(level, channel, y),
                  static_cast<std::size_t>(out.widthPixels));
    }
  }
}

}  // namespace

Status DownSample(const Picture& picture, int levels, const PlanarImage& out,
                  std::uint8_t* rowMemory, Threads threads) {
  const std::ptrdiff_t workerBytes = LevelRows::bytes(picture.widthPixels, levels);
  const Status status =
      overStripes(threads, out.heightRows, splitRows, [&](const Stripe& stripe, int k) {
        Reducer reducer(picture, levels, rowMemory + k * workerBytes);
        reduceRows(reducer, levels, stripe, out);
      });
  if (status == Status::kOk) return status;
  return fail(status, picture.isRgba()
                          ? "[%s] DownSampleRGBA2RGB_multiThread failed!\n"
                          : "[%s] DownSampleNV21_NV12_firstLevel_multiThread failed!\n");
}

}  // namespace lumora
