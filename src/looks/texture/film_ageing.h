// The ageing of LAODIANYING's film, before the tint: grain everywhere, then light blotches and
// white specks at random places.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "pixels/pixel_rows.h"
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

// AgeFilmRGBA and, for the luma plane of NV pictures, AgeFilmLuma, rows at a time.
class FilmAge {
 public:
  // Rewrites the two marks in place: what is to be seen of them becomes brighter, the rest 0. Finds
  // their places with numbers of the call's own, which the clock seeds, so that the marks of every
  // call lie elsewhere, or the seed that is set; and, by the untouched picture, which of them show.
  FilmAge(const Picture& picture, const MarkBuffer& marks);

  // Ages these rows of the picture.
  void operator()(const Picture& picture, const Stripe& rows) const;

 private:
  // The top left pixel of a mark that shows.
  struct Placement {
    const MarkTexture* mark;
    int x;
    int y;
  };
  static constexpr int kBlotchCount = 5;
  static constexpr int kSpeckCount = 60;

  struct RowPart;
  class Draws;
  static void paste(const Placement& at, int y, const RowPart& part);
  std::int64_t sumUnder(const Picture& picture, const Placement& at, int row) const;
  void place(const Picture& picture, const MarkTexture& mark, int count, Draws& draws);

  MarkBuffer marks_;
  // Each as it lies upon those before it.
  std::array<Placement, kBlotchCount + kSpeckCount> shown_;
  std::size_t shownCount_ = 0;
};

// Makes the marks of all later calls of this thread lie at the places of this seed; none: at those
// of the clock, the microseconds of the time of day, again.
void setFilmSeed(std::optional<std::uint32_t> seed);

// Pulls rows of the picture (of NV pictures the luma) toward the grain, which is their texture.
using GrainKernel = void (*)(const PixelRows& rows);
LUMORA_PER_LEVEL(GrainKernel, kFilmGrain)

}  // namespace lumora
