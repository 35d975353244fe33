// The records' layout on 32-bit processors, where hosts know it byte by byte.
#pragma once

#include <cstddef>
#include <cstdint>

#include "lumora/filters.h"

namespace lumora {

#if UINTPTR_MAX == UINT32_MAX
static_assert(sizeof(FilterAllocator) == 8);
static_assert(sizeof(FilterInitParam) == 36 && offsetof(FilterInitParam, width) == 24 &&
              offsetof(FilterInitParam, pstAllocator) == 32);
static_assert(sizeof(FilterInitParamApp) == 40 &&
              offsetof(FilterInitParamApp, pcResourceDir) == 32 &&
              offsetof(FilterInitParamApp, pstAllocator) == 36);
static_assert(sizeof(FilterImage) == 20 && offsetof(FilterImage, picData) == 4 &&
              offsetof(FilterImage, stride) == 16);
static_assert(sizeof(FilterProcessParam) == 44 && offsetof(FilterProcessParam, rectX) == 8 &&
              offsetof(FilterProcessParam, eMode) == 24 &&
              offsetof(FilterProcessParam, effectRatio) == 32 &&
              offsetof(FilterProcessParam, singleThread) == 40);
static_assert(sizeof(BlurParam) == 16 && sizeof(TiltShiftParam) == 20);
static_assert(sizeof(FixColorParam) == 20 && offsetof(FixColorParam, tolerance) == 3 &&
              offsetof(FixColorParam, mask) == 4 && offsetof(FixColorParam, maskStride) == 16);
static_assert(sizeof(FilterAlbumParam) == 100 && offsetof(FilterAlbumParam, stBlur) == 44 &&
              offsetof(FilterAlbumParam, stTiltShift) == 60 &&
              offsetof(FilterAlbumParam, stFixColor) == 80);
#endif

}  // namespace lumora
