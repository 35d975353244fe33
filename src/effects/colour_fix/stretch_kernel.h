// Stretching one row of samples by nearest neighbours.
#pragma once

#include <cstdint>

#include "platform/vector_level.h"

namespace lumora {

// Steps are in 12-bit fixed point.
inline constexpr int kStretchStepBits = 12;
inline constexpr std::int64_t kWholeStretchStep = 1 << kStretchStepBits;
// What the kernel takes: steps of up to two samples, rows of sixteen samples and more.
inline constexpr std::int64_t kWidestKernelStep = 2 * kWholeStretchStep;
inline constexpr std::int64_t kShortestKernelRow = 16;

// out[x] = samples[(x * step) >> 12] for every whole group of eight places below `places`. All of
// them lie within the row's `count` samples, and nothing outside those is read.
using StretchRow = void (*)(const std::uint8_t* samples, std::int64_t count, std::uint32_t step,
                            int places, std::uint8_t* out);

LUMORA_PER_LEVEL(StretchRow, kStretchRow)

}  // namespace lumora
