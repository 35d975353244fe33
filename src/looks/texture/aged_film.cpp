#include "looks/texture/aged_film.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "looks/looks.h"
#include "pixels/blend_kernel.h"

namespace lumora {
namespace {

// The film goes from step to step in tiles of rows that stay in the caches.
constexpr std::ptrdiff_t kTileBytes = 32768;

std::int64_t tileRows(const Picture& picture) {
  return std::max<std::int64_t>(kTileBytes / picture.strideBytes / 2, 1) * 2;
}

// The rows of a tile, of NV pictures in both planes.
template <class Use>
void forEachRun(const Picture& picture, const Stripe& tile, Use use) {
  const auto first = static_cast<std::ptrdiff_t>(tile.first);
  const auto bytes = static_cast<std::size_t>(tile.count * picture.strideBytes);
  use(picture.row(first), bytes);
  if (!picture.isRgba()) use(picture.chroma() + first / 2 * picture.strideBytes, bytes / 2);
}

// Each byte at the place that it has in the picture.
void keep(const Picture& picture, const Stripe& rows, std::uint8_t* copy) {
  forEachRun(picture, rows, [&](const std::uint8_t* from, std::size_t bytes) {
    std::memcpy(copy + (from - picture.data), from, bytes);
  });
}

// The picture as it was, tile after tile in the same place.
class Before {
 public:
  explicit Before(std::uint8_t* place) : place_(place) {}

  void keep(const Picture& picture, const Stripe& tile) const {
    std::uint8_t* to = place_;
    forEachRun(picture, tile, [&](const std::uint8_t* from, std::size_t bytes) {
      std::memcpy(to, from, bytes);
      to += bytes;
    });
  }
  void mixIn(const Picture& picture, const Stripe& tile, int weight) const {
    const std::uint8_t* from = place_;
    forEachRun(picture, tile, [&](std::uint8_t* to, std::size_t bytes) {
      kBlend()(from, to, bytes, weight);
      from += bytes;
    });
  }

 private:
  std::uint8_t* place_;
};

}  // namespace

Status runAgedFilm(const Picture& picture, const LookInputs& inputs, const MarkBuffer& marks,
                   std::uint8_t* copy, Threads threads) {
  const FilmAge age(picture, marks);
  const Look& tint = kLaodianying();
  const bool isKept = copy != nullptr && threads == Threads::kFour;
  const bool isMixed = copy != nullptr && threads == Threads::kCaller;
  const Before before(copy);
  const std::int64_t rows = tileRows(picture);
  std::array<bool, kStripeCount> ran{};
  const Status status =
      overStripes(threads, picture.heightRows, splitOf(picture), [&](const Stripe& stripe, int k) {
        ran[static_cast<std::size_t>(k)] = true;
        const std::int64_t end = stripe.first + stripe.count;
        for (std::int64_t y = stripe.first; y < end; y += rows) {
          const Stripe tile{y, std::min(rows, end - y)};
          if (isKept) keep(picture, tile, copy);
          if (isMixed) before.keep(picture, tile);
          age(picture, tile);
          tint.runForm(picture)(
              {PixelRows::of(picture, tile, k, inputs.texture, tint.textureBytesPerPixel),
               inputs.block, inputs.ratio});
          if (isMixed) before.mixIn(picture, tile, inputs.ratio);
        }
      });
  if (!isKept || status == Status::kOk) return status;
  const Stripes stripes = splitOf(picture)(picture.heightRows);
  for (std::size_t k = 0; k < stripes.size(); ++k) {
    if (!ran[k]) keep(picture, stripes[k], copy);
  }
  return status;
}

}  // namespace lumora
