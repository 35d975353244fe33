// The last step of an enlargement: level 1 doubled to the picture's size and mixed into it.
#pragma once

#include <cstdint>

#include "effects/pyramid/planar_image.h"
#include "platform/vector_level.h"

namespace lumora {

// Rows of level 1, one per channel, readable one sample behind their end and up to kRowPadding
// more.
struct LevelOneRows {
  const std::uint8_t* channel[kChannelCount];
};

// In both records `ahead` is the distance in bytes to the rows that come next, which are fetched
// meanwhile; whether they are there does not matter.

// One row of an RGBA picture. Even columns take the level's sample, odd ones the rounded mean of
// their neighbours; the samples are the rounded means of two rows, the same one twice in even rows.
struct RgbaMixRow {
  std::uint8_t* pixels;
  std::ptrdiff_t ahead;
  int widthPixels;
  LevelOneRows upper;
  LevelOneRows lower;
  const std::uint8_t* mask;  // one byte a pixel; not read when the weight is constant
  int weight;                // 0..31; not read with a mask
};

// One row pair of an NV picture: each luma sample serves its 2 x 2 block, and so does the mask byte
// of the block's first pixel.
struct NvMixRows {
  std::uint8_t* top;
  std::uint8_t* bottom;
  std::uint8_t* chroma;
  std::ptrdiff_t ahead;  // of the luma; half of it for the chroma
  int widthPixels;
  LevelOneRows level;
  const std::uint8_t* mask;
  int weight;
};

// By mask: 0 keeps the picture's sample, 255 takes the grown one, between them it is
// (picture (255 - mask) + grown mask + 128) >> 8. By weight: (picture (32 - weight) + grown weight
// + 16) >> 5.
struct MixKernels {
  void (*rgbaByMask)(const RgbaMixRow& row);
  void (*rgbaByWeight)(const RgbaMixRow& row);
  void (*nvByMask)(const NvMixRows& rows);
  void (*nvByWeight)(const NvMixRows& rows);
};

LUMORA_PER_LEVEL(MixKernels, kMix)

}  // namespace lumora
