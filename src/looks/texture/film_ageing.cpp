#include "looks/texture/film_ageing.h"

#include <sys/time.h>

#include <atomic>
#include <cstdlib>

namespace lumora {
namespace {

constexpr int kFaintestVisible = 80;
constexpr int kBlotchCount = 5;
constexpr int kSpeckCount = 60;
// Marks would not be seen on darker or brighter ground.
constexpr std::int64_t kDarkestMean = 50;
constexpr std::int64_t kBrightestMean = 200;

long microsecondsOfDay() {
  timeval now{};
  gettimeofday(&now, nullptr);
  return now.tv_usec;
}

std::atomic<FilmClock> filmClock{&microsecondsOfDay};

// Every visible byte becomes brightened(byte), every other one 0.
template <class Brighten>
void prepareMark(const MarkTexture& mark, Brighten brightened) {
  const std::int64_t bytes = std::int64_t{mark.widthPixels} * mark.heightRows;
  for (std::int64_t i = 0; i < bytes; ++i) {
    std::uint8_t& v = mark.texels[i];
    v = v >= kFaintestVisible ? static_cast<std::uint8_t>(brightened(v)) : 0;
  }
}

int brightness(const Picture& picture, const std::uint8_t* pixel) {
  return picture.isRgba() ? (pixel[0] + pixel[1] + pixel[2]) / 3 : pixel[0];
}

// The mean over the area the mark would cover, truncated row by row.
std::int64_t meanUnder(const Picture& picture, const std::uint8_t* topLeft,
                       const MarkTexture& mark) {
  const int pixelBytes = picture.isRgba() ? 4 : 1;
  std::int64_t sum = 0;
  for (int y = 0; y < mark.heightRows; ++y) {
    const std::uint8_t* pixel = topLeft + y * picture.strideBytes;
    for (int x = 0; x < mark.widthPixels; ++x, pixel += pixelBytes) {
      sum += brightness(picture, pixel);
    }
  }
  return sum / mark.heightRows / mark.widthPixels;
}

void paste(const Picture& picture, std::uint8_t* topLeft, const MarkTexture& mark) {
  const int pixelBytes = picture.isRgba() ? 4 : 1;
  const int colourBytes = picture.isRgba() ? 3 : 1;
  const std::uint8_t* texel = mark.texels;
  for (int y = 0; y < mark.heightRows; ++y) {
    std::uint8_t* pixel = topLeft + y * picture.strideBytes;
    for (int x = 0; x < mark.widthPixels; ++x, ++texel, pixel += pixelBytes) {
      if (*texel == 0) continue;
      for (int c = 0; c < colourBytes; ++c) pixel[c] = *texel;
    }
  }
}

// Both draws of every placement are made whether or not the mark fits and shows.
void stamp(const Picture& picture, const MarkTexture& mark, int count) {
  const std::int64_t columns = picture.widthPixels - std::int64_t{2} * mark.widthPixels;
  const std::int64_t rows = picture.heightRows - std::int64_t{2} * mark.heightRows;
  const bool fits = mark.widthPixels > 0 && mark.heightRows > 0 && columns > 0 && rows > 0;
  const int pixelBytes = picture.isRgba() ? 4 : 1;
  for (int k = 0; k < count; ++k) {
    const std::int64_t xDraw = lrand48();
    const std::int64_t yDraw = lrand48();
    if (!fits) continue;
    std::uint8_t* topLeft = picture.row(static_cast<std::ptrdiff_t>(yDraw % rows)) +
                            static_cast<std::ptrdiff_t>(xDraw % columns) * pixelBytes;
    const std::int64_t mean = meanUnder(picture, topLeft, mark);
    if (mean >= kDarkestMean && mean <= kBrightestMean) paste(picture, topLeft, mark);
  }
}

}  // namespace

void AgeFilm(const Picture& picture, const MarkBuffer& marks) {
  srand48(filmClock.load()());
  prepareMark(marks.speck, [](int) { return 255; });
  prepareMark(marks.blotch, [](int v) { return v + ((255 - v) >> 1); });
  kFilmGrain()(picture, marks.grain);
  stamp(picture, marks.blotch, kBlotchCount);
  stamp(picture, marks.speck, kSpeckCount);
}

void setFilmClock(FilmClock microseconds) {
  filmClock.store(microseconds != nullptr ? microseconds : &microsecondsOfDay);
}

}  // namespace lumora
