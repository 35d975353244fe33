// Where hosts that were compiled earlier look for the records' fields, on 32-bit and on 64-bit
// processors: addresses are as long as the processor's, and aligned to that.
#pragma once

#include <cstddef>

#include "lumora/filters.h"

namespace lumora {

inline constexpr std::size_t kAddressBytes = sizeof(void*);

static_assert(sizeof(FilterAllocator) == 2 * kAddressBytes &&
              offsetof(FilterAllocator, allocate) == 0);
static_assert(sizeof(FilterInitParam) == 32 + kAddressBytes &&
              offsetof(FilterInitParam, eMode) == 0 && offsetof(FilterInitParam, eDirection) == 4 &&
              offsetof(FilterInitParam, width) == 24 && offsetof(FilterInitParam, height) == 28 &&
              offsetof(FilterInitParam, pstAllocator) == 32);
static_assert(sizeof(FilterInitParamApp) == 32 + 2 * kAddressBytes &&
              offsetof(FilterInitParamApp, eMode) == 0 &&
              offsetof(FilterInitParamApp, eDirection) == 4 &&
              offsetof(FilterInitParamApp, width) == 24 &&
              offsetof(FilterInitParamApp, height) == 28 &&
              offsetof(FilterInitParamApp, pcResourceDir) == 32 &&
              offsetof(FilterInitParamApp, pstAllocator) == 32 + kAddressBytes);
// 20 or 32 bytes: the end is padded to an address.
static_assert(sizeof(FilterImage) == 3 * kAddressBytes + 8 && offsetof(FilterImage, eFormat) == 0 &&
              offsetof(FilterImage, picData) == kAddressBytes &&
              offsetof(FilterImage, width) == 2 * kAddressBytes &&
              offsetof(FilterImage, height) == 2 * kAddressBytes + 4 &&
              offsetof(FilterImage, stride) == 2 * kAddressBytes + 8);
static_assert(sizeof(FilterProcessParam) == 44 && offsetof(FilterProcessParam, rectX) == 8 &&
              offsetof(FilterProcessParam, rectY) == 12 &&
              offsetof(FilterProcessParam, rectWidth) == 16 &&
              offsetof(FilterProcessParam, rectHeight) == 20 &&
              offsetof(FilterProcessParam, eMode) == 24 &&
              offsetof(FilterProcessParam, eDirection) == 28 &&
              offsetof(FilterProcessParam, effectRatio) == 32 &&
              offsetof(FilterProcessParam, mosaicSize) == 36 &&
              offsetof(FilterProcessParam, singleThread) == 40);
static_assert(sizeof(BlurParam) == 16 && offsetof(BlurParam, centreY) == 4 &&
              offsetof(BlurParam, innerRadius) == 8 && offsetof(BlurParam, outerRadius) == 12);
static_assert(sizeof(TiltShiftParam) == 20 && offsetof(TiltShiftParam, y1) == 4 &&
              offsetof(TiltShiftParam, x2) == 8 && offsetof(TiltShiftParam, y2) == 12 &&
              offsetof(TiltShiftParam, core) == 16);
static_assert(sizeof(FixColorParam) == 3 * kAddressBytes + 8 &&
              offsetof(FixColorParam, tolerance) == 3 &&
              offsetof(FixColorParam, mask) == kAddressBytes &&
              offsetof(FixColorParam, maskWidth) == 2 * kAddressBytes &&
              offsetof(FixColorParam, maskHeight) == 2 * kAddressBytes + 4 &&
              offsetof(FixColorParam, maskStride) == 2 * kAddressBytes + 8);
static_assert(sizeof(FilterAlbumParam) == 80 + sizeof(FixColorParam) &&
              offsetof(FilterAlbumParam, stBlur) == 44 &&
              offsetof(FilterAlbumParam, stTiltShift) == 60 &&
              offsetof(FilterAlbumParam, stFixColor) == 80);

}  // namespace lumora
