#include "effects/up_scale.h"

#include <algorithm>
#include <cstring>

#include "effects/mix_kernels.h"
#include "effects/pyramid_kernels.h"
#include "pipeline/stripe_runner.h"

namespace lumora {
namespace {

// Makes the rows of the levels when they are asked for.
class Grower {
 public:
  Grower(const PlanarImage& small, int levels, int pictureWidth, int pictureHeight,
         std::uint8_t* rowMemory)
      : small_(small),
        levels_(levels),
        pictureWidth_(pictureWidth),
        pictureHeight_(pictureHeight),
        rows_(pictureWidth, levels, rowMemory) {}

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

struct GrowthStripe {
  const PlanarImage* small;
  int levels;
  const Picture* picture;
  Mix mix;
  std::uint8_t* rowMemory;
  Stripe rows;
};

const std::uint8_t* maskRow(const GrowthStripe& stripe, int y) {
  return stripe.mix.mask + std::ptrdiff_t{y} * stripe.picture->widthPixels;
}

void mixRgbaRow(const GrowthStripe& stripe, Grower& grower, int y) {
  const Picture& picture = *stripe.picture;
  const MixKernels& kernels = kMix();
  const LevelOneRows upper = grower.levelOne(y / 2);
  const LevelOneRows lower = grower.levelOne(std::min((y + 1) / 2, grower.lastLevelOneRow()));
  RgbaMixRow row{.pixels = picture.row(y),
                 .ahead = picture.strideBytes,
                 .widthPixels = picture.widthPixels,
                 .upper = upper,
                 .lower = lower,
                 .mask = nullptr,
                 .weight = stripe.mix.weight};
  if (stripe.mix.mask == nullptr) return kernels.rgbaByWeight(row);
  row.mask = maskRow(stripe, y);
  kernels.rgbaByMask(row);
}

void mixNvRows(const GrowthStripe& stripe, Grower& grower, int y) {
  const Picture& picture = *stripe.picture;
  const MixKernels& kernels = kMix();
  NvMixRows rows{.top = picture.row(y),
                 .bottom = picture.row(y + 1),
                 .chroma = picture.chroma() + y / 2 * picture.strideBytes,
                 .ahead = 2 * picture.strideBytes,
                 .widthPixels = picture.widthPixels,
                 .level = grower.levelOne(y / 2),
                 .mask = nullptr,
                 .weight = stripe.mix.weight};
  if (stripe.mix.mask == nullptr) return kernels.nvByWeight(rows);
  rows.mask = maskRow(stripe, y);
  kernels.nvByMask(rows);
}

void growStripe(const GrowthStripe& stripe) {
  const Picture& picture = *stripe.picture;
  Grower grower(*stripe.small, stripe.levels, picture.widthPixels, picture.heightRows,
                stripe.rowMemory);
  const int first = static_cast<int>(stripe.rows.first);
  const int end = first + static_cast<int>(stripe.rows.count);
  if (picture.isRgba()) {
    for (int y = first; y < end; ++y) mixRgbaRow(stripe, grower, y);
  } else {
    for (int y = first; y < end; y += 2) mixNvRows(stripe, grower, y);
  }
}

}  // namespace

Status ImUpScale(const PlanarImage& small, int levels, const Picture& picture, const Mix& mix,
                 std::uint8_t* rowMemory, Threads threads) {
  GrowthStripe whole{&small, levels, &picture, mix, rowMemory, {0, picture.heightRows}};
  if (threads == Threads::kCaller) {
    growStripe(whole);
    return Status::kOk;
  }
  const Stripes stripes =
      picture.isRgba() ? splitRows(picture.heightRows) : splitRowPairs(picture.heightRows);
  std::array<GrowthStripe, kStripeCount> records;
  for (int k = 0; k < kStripeCount; ++k) {
    records[k] = whole;
    records[k].rowMemory = rowMemory + k * LevelRows::bytes(picture.widthPixels, levels);
    records[k].rows = stripes[k];
  }
  return StripeRunner::run<GrowthStripe>(growStripe, records);
}

}  // namespace lumora
