// The ageing of LAODIANYING's film, run on the whole picture before the tint: grain everywhere,
// then light blotches and white specks at random places.
#pragma once

#include <cstdint>

#include "platform/picture.h"
#include "platform/vector_level.h"

namespace lumora {

// A mark to stamp, one byte a pixel, rows without gaps.
struct MarkTexture {
  std::uint8_t* texels;
  int widthPixels;
  int heightRows;
};

struct MarkBuffer {
  const std::uint8_t* grain;  // at the picture's size, rows without gaps
  MarkTexture blotch;
  MarkTexture speck;
};

// AgeFilmRGBA and, for the luma plane of NV pictures, AgeFilmLuma. Rewrites the two marks in place:
// what is to be seen of them becomes brighter, the rest 0. Draws from the C library's generator,
// seeded by the clock, so that the marks of every call lie elsewhere.
void AgeFilm(const Picture& picture, const MarkBuffer& marks);

// For tests: where the seed comes from, instead of the microseconds of the time of day; null for
// those.
using FilmClock = long (*)();
void setFilmClock(FilmClock microseconds);

// Pulls the picture (of NV pictures the luma) toward the grain.
using GrainKernel = void (*)(const Picture& picture, const std::uint8_t* grain);
LUMORA_PER_LEVEL(GrainKernel, kFilmGrain)

}  // namespace lumora
