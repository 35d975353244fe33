#include "effects/focus.h"

#include <algorithm>

#include "effects/masks/masks.h"
#include "effects/pyramid/down_sample.h"
#include "effects/pyramid/pyramid_memory.h"
#include "effects/pyramid/up_scale.h"
#include "effects/smoothing/binomial_blur.h"
#include "effects/smoothing/gaussian.h"
#include "platform/host_block.h"
#include "platform/log.h"

namespace lumora {
namespace {

// How far the picture is reduced and how much the small image is smoothed.
struct Strength {
  int levels;     // 1 reduces to a half, 2 to a quarter
  int smoothing;  // the blur level as the smoothing counts it

  // Level 2 reduces no further than 1 does and makes up for it by smoothing more.
  static Strength of(int blurLevel) {
    if (blurLevel == 2) return {1, 7};
    return {blurLevel < 3 ? 1 : 2, blurLevel};
  }
};

int shortSide(const Picture& picture) { return std::min(picture.widthPixels, picture.heightRows); }

std::uint64_t pixelCount(const Picture& picture) {
  return static_cast<std::uint64_t>(picture.widthPixels) *
         static_cast<std::uint64_t>(picture.heightRows);
}

Status noMemory() { return fail(Status::kNoMemory, "[%s] can't malloc enough memory!\n"); }

float smoothingSigma(int smoothing, int side) {
  const auto steps = static_cast<float>(smoothing - 1);
  const float growth = static_cast<float>(side - 400) * 0.01f * (0.14803f + steps * 0.011f);
  return std::max(0.030518f + steps * 0.055f + growth, 0.0f);
}

// Pictures up to this shorter side are smoothed by the 3 x 3 blur.
constexpr int kSmallSide = 255;

Status smooth(const Picture& picture, int smoothing, const PyramidMemory& memory,
              const FilterAllocator& allocator) {
  const int side = shortSide(picture);
  if (side <= kSmallSide) {
    Blur3x3Planes(memory.reduced, memory.smoothed);
    return Status::kOk;
  }
  const HostBlock work(allocator, static_cast<std::uint64_t>(gaussianWorkBytes(memory.reduced)));
  if (!work) return noMemory();
  RecursiveGaussianPlanes(memory.reduced, smoothingSigma(smoothing, side), memory.smoothed,
                          work.data());
  return Status::kOk;
}

Status blurByMask(const Picture& picture, const Strength& strength, const MaskRows& mask,
                  std::uint8_t* maskMemory, std::uint8_t* block, const FilterAllocator& allocator,
                  Threads threads) {
  const PyramidMemory memory(picture, strength.levels, block);
  Status status = DownSample(picture, strength.levels, memory.reduced, memory.rows, threads);
  if (status != Status::kOk) return status;
  status = smooth(picture, strength.smoothing, memory, allocator);
  if (status != Status::kOk) return status;
  status = ImUpScale(memory.smoothed, strength.levels, picture, {&mask, 0, maskMemory}, memory.rows,
                     threads);
  if (status == Status::kOk) return status;
  return fail(status, picture.isRgba() ? "[%s] ImUpScaleRGBA_multiThread return ERROR!\n"
                                       : "[%s] ImUpScaleNV21_NV12_multiThread return ERROR!\n");
}

}  // namespace

Status FilterBlur(const Picture& picture, const BlurParam& circle, int level,
                  const FilterAllocator& allocator, Threads threads) {
  if (level <= 0) return Status::kOk;
  if (shortSide(picture) <= kShortSideLimit) return Status::kBadArgument;
  const HostBlock mask(allocator, pixelCount(picture));
  if (!mask) return noMemory();
  const HostBlock levels(allocator, 3 * pixelCount(picture));
  if (!levels) return noMemory();
  return blurByMask(picture, Strength::of(level), CircleMask(picture.widthPixels, circle),
                    mask.data(), levels.data(), allocator, threads);
}

Status FilterTiltshift(const Picture& picture, const TiltShiftParam& tilt, int level,
                       const FilterAllocator& allocator, Threads threads) {
  if (level <= 0) return Status::kOk;
  if (shortSide(picture) <= kShortSideLimit) return Status::kBadArgument;
  const HostBlock levels(allocator, 3 * pixelCount(picture));
  if (!levels) return noMemory();
  const HostBlock mask(allocator, pixelCount(picture));
  if (!mask) return noMemory();
  return blurByMask(picture, Strength::of(level), TiltMask(picture.widthPixels, tilt), mask.data(),
                    levels.data(), allocator, threads);
}

}  // namespace lumora
