// One run of rows in place, as the walks take it: a stripe, or the whole picture.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "platform/picture.h"
#include "platform/stripe_runner.h"

namespace lumora {

// Makes the rows of a texture when a walk asks for them, which it does from the first one down.
class TextureRows {
 public:
  // Row y of the picture, packed; good until the call after the next: a row pair needs two.
  virtual const std::uint8_t* row(int y) = 0;

 protected:
  ~TextureRows() = default;
};

// The texture of a picture: a plane of its size, rows without gaps, or one maker of rows for every
// stripe. Neither where a look has none.
struct TextureSource {
  const std::uint8_t* plane = nullptr;
  std::array<TextureRows*, kStripeCount> makers{};
};

struct PixelRows {
  PixelFormat format;
  int widthPixels;
  int rows;  // luma rows for NV pictures, always even
  std::ptrdiff_t strideBytes;
  std::uint8_t* pixels;  // first RGBA or luma row
  std::uint8_t* chroma;  // first chroma row of NV pictures, otherwise null
  // The texture: the plane from the run's first row on, or what makes its rows.
  const std::uint8_t* texture = nullptr;
  TextureRows* textureRows = nullptr;
  int firstRow = 0;  // of the run in the picture

  // Stripe k of a picture.
  static PixelRows of(const Picture& picture, Stripe stripe, int k = 0,
                      const TextureSource& texture = {}, int texelBytes = 0) {
    const auto first = static_cast<std::ptrdiff_t>(stripe.first);
    const std::ptrdiff_t texelsBefore = first * picture.widthPixels * texelBytes;
    return {
        .format = picture.format,
        .widthPixels = picture.widthPixels,
        .rows = static_cast<int>(stripe.count),
        .strideBytes = picture.strideBytes,
        .pixels = picture.row(first),
        .chroma = picture.isRgba() ? nullptr : picture.chroma() + first / 2 * picture.strideBytes,
        .texture = texture.plane != nullptr ? texture.plane + texelsBefore : nullptr,
        .textureRows = texture.makers[static_cast<std::size_t>(k)],
        .firstRow = static_cast<int>(first)};
  }
};

// How the rows of a picture are shared out: NV pictures in whole row pairs.
inline auto splitOf(const Picture& picture) {
  return picture.isRgba() ? &splitRows : &splitRowPairs;
}

}  // namespace lumora
