// Where hosts that were compiled earlier look for the records' fields.
#include <gtest/gtest.h>

#include <cstddef>

#include "lumora/filters.h"

namespace {

struct Place {
  const char* name;
  std::size_t found;
  std::size_t on32Bit;
  std::size_t on64Bit;
};

#define SIZE(record, on32, on64) \
  { #record, sizeof(record), on32, on64 }
#define FIELD(record, field, on32, on64) \
  { #record "." #field, offsetof(record, field), on32, on64 }

constexpr Place kPlaces[] = {
    SIZE(FilterAllocator, 8, 16),
    FIELD(FilterAllocator, allocate, 0, 0),
    FIELD(FilterAllocator, release, 4, 8),
    SIZE(FilterInitParam, 36, 40),
    FIELD(FilterInitParam, eMode, 0, 0),
    FIELD(FilterInitParam, eDirection, 4, 4),
    FIELD(FilterInitParam, width, 24, 24),
    FIELD(FilterInitParam, height, 28, 28),
    FIELD(FilterInitParam, pstAllocator, 32, 32),
    SIZE(FilterInitParamApp, 40, 48),
    FIELD(FilterInitParamApp, eMode, 0, 0),
    FIELD(FilterInitParamApp, eDirection, 4, 4),
    FIELD(FilterInitParamApp, width, 24, 24),
    FIELD(FilterInitParamApp, height, 28, 28),
    FIELD(FilterInitParamApp, pcResourceDir, 32, 32),
    FIELD(FilterInitParamApp, pstAllocator, 36, 40),
    SIZE(FilterImage, 20, 32),
    FIELD(FilterImage, eFormat, 0, 0),
    FIELD(FilterImage, picData, 4, 8),
    FIELD(FilterImage, width, 8, 16),
    FIELD(FilterImage, height, 12, 20),
    FIELD(FilterImage, stride, 16, 24),
    SIZE(FilterProcessParam, 44, 44),
    FIELD(FilterProcessParam, rectX, 8, 8),
    FIELD(FilterProcessParam, rectY, 12, 12),
    FIELD(FilterProcessParam, rectWidth, 16, 16),
    FIELD(FilterProcessParam, rectHeight, 20, 20),
    FIELD(FilterProcessParam, eMode, 24, 24),
    FIELD(FilterProcessParam, eDirection, 28, 28),
    FIELD(FilterProcessParam, effectRatio, 32, 32),
    FIELD(FilterProcessParam, mosaicSize, 36, 36),
    FIELD(FilterProcessParam, singleThread, 40, 40),
    SIZE(BlurParam, 16, 16),
    FIELD(BlurParam, centreY, 4, 4),
    FIELD(BlurParam, innerRadius, 8, 8),
    FIELD(BlurParam, outerRadius, 12, 12),
    SIZE(TiltShiftParam, 20, 20),
    FIELD(TiltShiftParam, y1, 4, 4),
    FIELD(TiltShiftParam, x2, 8, 8),
    FIELD(TiltShiftParam, y2, 12, 12),
    FIELD(TiltShiftParam, core, 16, 16),
    SIZE(FixColorParam, 20, 32),
    FIELD(FixColorParam, tolerance, 3, 3),
    FIELD(FixColorParam, mask, 4, 8),
    FIELD(FixColorParam, maskWidth, 8, 16),
    FIELD(FixColorParam, maskHeight, 12, 20),
    FIELD(FixColorParam, maskStride, 16, 24),
    SIZE(FilterAlbumParam, 100, 112),
    FIELD(FilterAlbumParam, stBlur, 44, 44),
    FIELD(FilterAlbumParam, stTiltShift, 60, 60),
    FIELD(FilterAlbumParam, stFixColor, 80, 80),
};

TEST(RecordLayout, IsThatOfEarlierBuilds) {
  for (const Place& place : kPlaces) {
    EXPECT_EQ(place.found, sizeof(void*) == 4 ? place.on32Bit : place.on64Bit) << place.name;
  }
}

}  // namespace
