#include "effects/pyramid/up_scale.h"

#include <algorithm>
#include <cstring>

#include "effects/pyramid/mix_kernels.h"
#include "effects/pyramid/pyramid_kernels.h"
#include "pixels/pixel_rows.h"

namespace lumora {
namespace {

// Makes the rows of the levels when they are asked for.
class Grower {
 public:
  Grower(const PlanarImage& small, int levels, const Picture& picture, std::uint8_t* rowMemory)
      : small_(small),
        levels_(levels),
        pictureWidth_(picture.widthPixels),
        pictureHeight_(picture.heightRows),
        rows_(picture.widthPixels, levels, rowMemory) {}

  LevelOneRows levelOne(int y) {
    makeRow(1, y);
    return {{rows_.row(1, 0, y), rows_.row(1, 1, y), rows_.row(1, 2, y)}};
  }
  int lastLevelOneRow() const { return levelExtent(pictureHeight_, 1) - 1; }

 private:
  void makeRow(int level, int y);
  void copySmall(int y);
  void grow(int level, int y);

  const PlanarImage& small_;
  int levels_;
  int pictureWidth_;
  int pictureHeight_;
  const PyramidKernels& kernels_ = kPyramid();
  LevelRows rows_;
};

// Beyond its ends a row goes on with its first and its last sample.
void Grower::makeRow(int level, int y) {
  if (rows_.holds(level, y)) return;
  if (level == levels_) {
    copySmall(y);
  } else {
    grow(level, y);
  }
  const int width = levelExtent(pictureWidth_, level);
  for (int channel = 0; channel < kChannelCount; ++channel) {
    std::uint8_t* const row = rows_.row(level, channel, y);
    row[-1] = row[0];
    row[width] = row[width - 1];
  }
  rows_.setHeld(level, y);
}

void Grower::copySmall(int y) {
  for (int channel = 0; channel < kChannelCount; ++channel) {
    std::memcpy(rows_.row(levels_, channel, y), small_.row(channel, y),
                static_cast<std::size_t>(small_.widthPixels));
  }
}

// Row 2i lies nearest to row i of the coarser level, then to i - 1; row 2i + 1 to i, then to i + 1.
void Grower::grow(int level, int y) {
  const int coarser = level + 1;
  const int near = y / 2;
  const int far =
      std::clamp(y % 2 != 0 ? near + 1 : near - 1, 0, levelExtent(pictureHeight_, coarser) - 1);
  makeRow(coarser, near);
  makeRow(coarser, far);
  for (int channel = 0; channel < kChannelCount; ++channel) {
    kernels_.doubleRow(rows_.row(coarser, channel, near), rows_.row(coarser, channel, far),
                       levelExtent(pictureWidth_, coarser), rows_.row(level, channel, y));
  }
}

// The mix on one stripe.
struct StripeMix {
  const Mix& whole;
  int stripe;

  const std::uint8_t* maskRow(const Picture& picture, int y) const {
    if (whole.mask == nullptr) return nullptr;
    std::uint8_t* const row = whole.maskMemory + std::ptrdiff_t{stripe} * picture.widthPixels;
    whole.mask->fillRow(y, row);
    return row;
  }
};

void mixRgbaRow(const Picture& picture, const StripeMix& mix, Grower& grower, int y) {
  const RgbaMixRow row{.pixels = picture.row(y),
                       .ahead = picture.strideBytes,
                       .widthPixels = picture.widthPixels,
                       .upper = grower.levelOne(y / 2),
                       .lower = grower.levelOne(std::min((y + 1) / 2, grower.lastLevelOneRow())),
                       .mask = mix.maskRow(picture, y),
                       .weight = mix.whole.weight};
  (mix.whole.mask == nullptr ? kMix().rgbaByWeight : kMix().rgbaByMask)(row);
}

void mixNvRows(const Picture& picture, const StripeMix& mix, Grower& grower, int y) {
  const NvMixRows rows{.top = picture.row(y),
                       .bottom = picture.row(y + 1),
                       .chroma = picture.chroma() + y / 2 * picture.strideBytes,
                       .ahead = 2 * picture.strideBytes,
                       .widthPixels = picture.widthPixels,
                       .level = grower.levelOne(y / 2),
                       .mask = mix.maskRow(picture, y),
                       .weight = mix.whole.weight};
  (mix.whole.mask == nullptr ? kMix().nvByWeight : kMix().nvByMask)(rows);
}

void growRows(const Picture& picture, const StripeMix& mix, Grower& grower, const Stripe& rows) {
  const int first = static_cast<int>(rows.first), end = first + static_cast<int>(rows.count);
  if (picture.isRgba()) {
    for (int y = first; y < end; ++y) mixRgbaRow(picture, mix, grower, y);
  } else {
    for (int y = first; y < end; y += 2) mixNvRows(picture, mix, grower, y);
  }
}

}  // namespace

Status ImUpScale(const PlanarImage& small, int levels, const Picture& picture, const Mix& mix,
                 std::uint8_t* rowMemory, Threads threads) {
  const std::ptrdiff_t workerBytes = LevelRows::bytes(picture.widthPixels, levels);
  return overStripes(threads, picture.heightRows, splitOf(picture),
                     [&](const Stripe& stripe, int k) {
                       Grower grower(small, levels, picture, rowMemory + k * workerBytes);
                       growRows(picture, {mix, k}, grower, stripe);
                     });
}

}  // namespace lumora
