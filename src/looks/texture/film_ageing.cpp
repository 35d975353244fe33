#include "looks/texture/film_ageing.h"

#include <sys/time.h>

#include <algorithm>
#include <cassert>
#include <cstring>
#include <random>

namespace lumora {
namespace {

constexpr int kFaintestVisible = 80;
// Marks would not be seen on darker or brighter ground.
constexpr std::int64_t kDarkestMean = 50;
constexpr std::int64_t kBrightestMean = 200;

thread_local std::optional<std::uint32_t> filmSeed;

std::uint32_t seedOfCall() {
  if (filmSeed) return *filmSeed;
  timeval now{};
  gettimeofday(&now, nullptr);
  return static_cast<std::uint32_t>(now.tv_usec);
}

// Every visible byte becomes brightened(byte), every other one 0.
template <class Brighten>
void prepareMark(const MarkTexture& mark, Brighten brightened) {
  const std::int64_t bytes = std::int64_t{mark.widthPixels} * mark.heightRows;
  for (std::int64_t i = 0; i < bytes; ++i) {
    std::uint8_t& v = mark.texels[i];
    v = v >= kFaintestVisible ? static_cast<std::uint8_t>(brightened(v)) : 0;
  }
}

// A mark is 48 pixels wide on a picture of 3000.
constexpr int kWidestMark = LUMORA_LONGEST_SIDE * 48 / 3000;

int pixelBytesOf(const Picture& picture) { return picture.isRgba() ? 4 : 1; }

int brightness(const std::uint8_t* pixel, int pixelBytes) {
  return pixelBytes == 4 ? (pixel[0] + pixel[1] + pixel[2]) / 3 : pixel[0];
}

}  // namespace

// The numbers that srand48 and lrand48 give, from a state of the call's own: nobody else's numbers
// change, and nobody else changes these.
class FilmAge::Draws {
 public:
  explicit Draws(std::uint32_t seed) : generator_(std::uint64_t{seed} << 16 | 0x330E) {}
  std::int64_t next() { return static_cast<std::int64_t>(generator_() >> 17); }

 private:
  std::linear_congruential_engine<std::uint64_t, 0x5DEECE66D, 0xB, std::uint64_t{1} << 48>
      generator_;
};

// Pixels of a row of the picture, from column `first` on.
struct FilmAge::RowPart {
  std::uint8_t* pixels;
  int pixelBytes;
  int first;
  int count;
};

// What a mark has in a part of row y.
void FilmAge::paste(const Placement& at, int y, const RowPart& part) {
  const MarkTexture& mark = *at.mark;
  if (y < at.y || y >= at.y + mark.heightRows) return;
  const std::uint8_t* const texels =
      mark.texels + static_cast<std::ptrdiff_t>(y - at.y) * mark.widthPixels;
  const int colourBytes = part.pixelBytes == 4 ? 3 : 1;
  const int end = std::min(at.x + mark.widthPixels, part.first + part.count);
  for (int x = std::max(at.x, part.first); x < end; ++x) {
    if (texels[x - at.x] == 0) continue;
    std::fill_n(part.pixels + (x - part.first) * part.pixelBytes, colourBytes, texels[x - at.x]);
  }
}

// The brightness of the pixels that a row of the mark would cover, summed.
std::int64_t FilmAge::sumUnder(const Picture& picture, const Placement& at, int row) const {
  const int y = at.y + row, count = at.mark->widthPixels;
  std::uint8_t pixels[4 * kWidestMark];
  const RowPart part{pixels, pixelBytesOf(picture), at.x, count};
  std::memcpy(pixels, picture.row(y) + at.x * part.pixelBytes,
              static_cast<std::size_t>(count * part.pixelBytes));
  kFilmGrain()({.format = picture.format,
                .widthPixels = count,
                .rows = 1,
                .strideBytes = 0,
                .pixels = pixels,
                .chroma = nullptr,
                .texture = marks_.grain + std::ptrdiff_t{y} * picture.widthPixels + at.x});
  for (std::size_t k = 0; k < shownCount_; ++k) paste(shown_[k], y, part);
  std::int64_t sum = 0;
  for (int x = 0; x < count; ++x) {
    sum += brightness(pixels + x * part.pixelBytes, part.pixelBytes);
  }
  return sum;
}

// Both draws of every placement are made whether or not the mark fits and shows. The mean over the
// area that it would cover is truncated twice.
void FilmAge::place(const Picture& picture, const MarkTexture& mark, int count, Draws& draws) {
  const std::int64_t columns = picture.widthPixels - std::int64_t{2} * mark.widthPixels;
  const std::int64_t rows = picture.heightRows - std::int64_t{2} * mark.heightRows;
  const bool fits = mark.widthPixels > 0 && mark.heightRows > 0 && columns > 0 && rows > 0;
  assert(mark.widthPixels <= kWidestMark);
  for (int k = 0; k < count; ++k) {
    const std::int64_t xDraw = draws.next();
    const std::int64_t yDraw = draws.next();
    if (!fits) continue;
    const Placement at{&mark, static_cast<int>(xDraw % columns), static_cast<int>(yDraw % rows)};
    std::int64_t sum = 0;
    for (int row = 0; row < mark.heightRows; ++row) sum += sumUnder(picture, at, row);
    const std::int64_t mean = sum / mark.heightRows / mark.widthPixels;
    if (mean >= kDarkestMean && mean <= kBrightestMean) shown_[shownCount_++] = at;
  }
}

FilmAge::FilmAge(const Picture& picture, const MarkBuffer& marks) : marks_(marks) {
  Draws draws(seedOfCall());
  prepareMark(marks.speck, [](int) { return 255; });
  prepareMark(marks.blotch, [](int v) { return v + ((255 - v) >> 1); });
  place(picture, marks_.blotch, kBlotchCount, draws);
  place(picture, marks_.speck, kSpeckCount, draws);
}

void FilmAge::operator()(const Picture& picture, const Stripe& rows) const {
  kFilmGrain()(PixelRows::of(picture, rows, 0, {.plane = marks_.grain}, 1));
  const std::int64_t end = rows.first + rows.count;
  for (std::size_t k = 0; k < shownCount_; ++k) {
    const Placement& at = shown_[k];
    const std::int64_t last = std::min<std::int64_t>(at.y + at.mark->heightRows, end);
    for (std::int64_t y = std::max<std::int64_t>(at.y, rows.first); y < last; ++y) {
      paste(at, static_cast<int>(y),
            {picture.row(static_cast<std::ptrdiff_t>(y)), pixelBytesOf(picture), 0,
             picture.widthPixels});
    }
  }
}

void setFilmSeed(std::optional<std::uint32_t> seed) { filmSeed = seed; }

}  // namespace lumora
