#include "pictures.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <new>
#include <tuple>

#include "limit.h"

namespace lumora::bench {
namespace {

constexpr std::size_t kPage = 4096;

std::size_t pictureBytes(Format format, Size size) {
  const std::size_t pixels = static_cast<std::size_t>(size.width) * size.height;
  return format.code == LUMORA_FORMAT_RGBA ? 4 * pixels : pixels * 3 / 2;
}

class Noise {
 public:
  // The base value plus -8..7, within a byte.
  std::uint8_t operator()(int base) {
    state_ = state_ * 1664525u + 1013904223u;
    return static_cast<std::uint8_t>(std::clamp(base + static_cast<int>(state_ >> 28) - 8, 0, 255));
  }

 private:
  std::uint32_t state_ = 1;
};

void drawRgba(std::uint8_t* out, Size size) {
  Noise noise;
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width; ++x, out += 4) {
      out[0] = noise(255 * x / size.width);
      out[1] = noise(255 * y / size.height);
      out[2] = noise(255 * (x + y) / (size.width + size.height));
      out[3] = 255;
    }
  }
}

void drawNv(std::uint8_t* out, Size size) {
  Noise noise;
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width; ++x) {
      *out++ = noise(255 * (x + y) / (size.width + size.height));
    }
  }
  for (int y = 0; y < size.height / 2; ++y) {
    for (int x = 0; x < size.width; x += 2) {
      *out++ = noise(48 + 160 * x / size.width);
      *out++ = noise(208 - 320 * y / size.height);
    }
  }
}

// Drawn once per format and size.
const std::uint8_t* drawing(Format format, Size size) {
  static std::map<std::tuple<std::uint32_t, int, int>, Buffer> drawings;
  Buffer& drawn = drawings[{format.code, size.width, size.height}];
  if (!drawn) {
    drawn = makeBuffer(pictureBytes(format, size));
    (format.code == LUMORA_FORMAT_RGBA ? drawRgba : drawNv)(drawn.get(), size);
  }
  return drawn.get();
}

}  // namespace

Buffer makeBuffer(std::size_t bytes) {
  void* const block = std::aligned_alloc(kPage, (bytes + kPage - 1) / kPage * kPage);
  if (block == nullptr) throw std::bad_alloc();
  return Buffer(static_cast<std::uint8_t*>(block));
}

TestPicture::TestPicture(Format f, Size s)
    : format(f),
      size(s),
      stride(f.code == LUMORA_FORMAT_RGBA ? 4 * s.width : s.width),
      bytes(pictureBytes(f, s)),
      original_(drawing(f, s)),
      data_(makeBuffer(bytes)) {
  restore();
}

FilterImage TestPicture::image() const {
  return {format.code, data(), static_cast<std::uint32_t>(size.width),
          static_cast<std::uint32_t>(size.height), stride};
}

void TestPicture::restore() const { std::memcpy(data(), original_, bytes); }

void TestPicture::limitPass() const { kXorPass()(data(), bytes); }

}  // namespace lumora::bench
