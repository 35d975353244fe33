#include "resources/stretched_texture.h"

#include <algorithm>

namespace lumora {
namespace {

constexpr std::uintptr_t kLine = 64;

std::size_t rowBytesOf(std::int32_t widthPixels, std::int32_t bytesPerPixel) {
  return static_cast<std::size_t>(widthPixels) * static_cast<std::size_t>(bytesPerPixel);
}

// The first cache line at or after a place: stores that straddle two are slow.
std::uint8_t* inCacheLines(std::uint8_t* place) {
  return place + (kLine - reinterpret_cast<std::uintptr_t>(place) % kLine) % kLine;
}

// Asks for a row that is gathered once the picture's next few rows are done: since the last call
// the picture has pushed it out of the caches.
void prefetch(const std::uint8_t* row, std::size_t bytes) {
  for (std::size_t i = 0; i < bytes; i += kLine) __builtin_prefetch(row + i);
}

}  // namespace

StretchedTexture::StretchedTexture(std::int32_t bytesPerPixel, PixelSize from,
                                   const std::uint8_t* texels, PixelSize to, int rowsAtOnce,
                                   std::uint8_t* memory)
    : texels_(texels),
      sourceRows_(from.height),
      format_{from.width, bytesPerPixel},
      rowsAtOnce_(rowsAtOnce),
      rowRule_(from.height, to.height),
      rowBytes_(rowBytesOf(to.width, bytesPerPixel)),
      // The tables take at most 2 x rowBytes + 60 bytes, a row rowBytes + 63.
      gather_(FixedPointRule(from.width, to.width), format_, 0, rowBytes_,
              {reinterpret_cast<std::uint16_t*>(memory), RowGather::tableSize(rowBytes_)}) {
  std::uint8_t* next = inCacheLines(memory + RowGather::tableSize(rowBytes_) * 2);
  for (Rows& rows : rows_) {
    rows.whole = this;
    for (std::uint8_t*& buffer : rows.buffers) {
      buffer = next;
      next = inCacheLines(next + rowBytes_);
    }
  }
}

TextureSource StretchedTexture::source() {
  TextureSource source;
  for (std::size_t k = 0; k < rows_.size(); ++k) source.makers[k] = &rows_[k];
  return source;
}

const std::uint8_t* StretchedTexture::texelRow(std::int64_t row) const {
  return texels_ + static_cast<std::size_t>(row) * format_.srcRowBytes();
}

const std::uint8_t* StretchedTexture::Rows::row(int y) {
  const std::int64_t wanted = whole->rowRule_(y);
  const bool isNew = wanted != sourceRow;
  if (isNew) newest = (newest + 1) % whole->rowsAtOnce_;
  std::uint8_t* const buffer = buffers[static_cast<std::size_t>(newest)];
  if (isNew) {
    whole->gather_.gather(whole->texelRow(wanted), buffer);
    sourceRow = wanted;
    const std::int64_t next = std::max(wanted + 1, whole->rowRule_(y + 1));
    if (next < whole->sourceRows_) {
      prefetch(whole->texelRow(next), whole->format_.srcRowBytes());
    }
  }
  return buffer;
}

}  // namespace lumora
