#include "looks/texture/aged_film.h"

#include <algorithm>
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
  const bool isMixed = copy != nullptr;
  const std::int64_t rows = tileRows(picture);
  return overStripes(
      threads, picture.heightRows, splitOf(picture), [&](const Stripe& stripe, int k) {
        // A stripe of the picture with its chroma has the room of one of the copy.
        const std::int64_t bytesPerTwoRows = picture.strideBytes * (picture.isRgba() ? 2 : 3);
        const Before before(isMixed ? copy + stripe.first * bytesPerTwoRows / 2 : nullptr);
        const std::int64_t end = stripe.first + stripe.count;
        for (std::int64_t y = stripe.first; y < end; y += rows) {
          const Stripe tile{y, std::min(rows, end - y)};
          if (isMixed) before.keep(picture, tile);
          age(picture, tile);
          tint.runForm(picture)(
              {PixelRows::of(picture, tile, k, inputs.texture, tint.textureBytesPerPixel),
               inputs.block, inputs.ratio});
          if (isMixed) before.mixIn(picture, tile, inputs.ratio);
        }
      });
}

}  // namespace lumora
