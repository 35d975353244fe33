// A texture stretched to a picture's size while a walk goes down the picture.
#pragma once

#include <array>
#include <cstdint>

#include "pixels/pixel_rows.h"
#include "resources/row_gather.h"
#include "resources/texture_pack.h"

namespace lumora {

// The same bytes as MixImgResizeStripe makes. A source row is gathered once and serves all the rows
// that show it.
class StretchedTexture {
 public:
  // memory: bytesPerPixel x to.pixels() bytes, of which the tables and two rows for each stripe
  // take the first; rowsAtOnce: 2 for walks over row pairs, 1 keeps less in the caches.
  // `to` is at least 88 rows high.
  StretchedTexture(std::int32_t bytesPerPixel, PixelSize from, const std::uint8_t* texels,
                   PixelSize to, int rowsAtOnce, std::uint8_t* memory);
  StretchedTexture(const StretchedTexture&) = delete;
  StretchedTexture& operator=(const StretchedTexture&) = delete;

  // Borrows this.
  TextureSource source();

 private:
  class Rows final : public TextureRows {
   public:
    const StretchedTexture* whole = nullptr;
    std::array<std::uint8_t*, 2> buffers{};
    int newest = 0;
    std::int64_t sourceRow = -1;

    const std::uint8_t* row(int y) override;
  };

  const std::uint8_t* texelRow(std::int64_t row) const;

  const std::uint8_t* texels_;
  std::int32_t sourceRows_;
  RowFormat format_;
  int rowsAtOnce_;
  FixedPointRule rowRule_;
  std::size_t rowBytes_;
  RowGather gather_;
  std::array<Rows, kStripeCount> rows_;
};

}  // namespace lumora
