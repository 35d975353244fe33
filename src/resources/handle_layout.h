// What a handle's block holds, from its first 16-byte boundary: the host's allocator, the texture
// header, the tuning parameters and the texture area.
#pragma once

#include <cstddef>
#include <cstdint>

#include "lumora/filters.h"
#include "platform/host_block.h"
#include "resources/texture_pack.h"

namespace lumora {

inline constexpr int kPlaneCount = 14;
// The first of the three planes that no texture is kept in: working memory of some modes.
inline constexpr int kScratchPlane = 10;
inline constexpr int kGrainPlane = 13;
inline constexpr std::size_t kFilterParamsBytes = 4096;

struct TextureHeader {
  std::uint8_t bytes[kPackHeaderBytes];

  std::int32_t textureWidth() const { return bytes[0] * 256 + bytes[1]; }
  std::int32_t textureHeight() const { return bytes[2] * 256 + bytes[3]; }
  void setTextureSize(std::uint32_t width, std::uint32_t height) {
    bytes[0] = static_cast<std::uint8_t>(width >> 8);
    bytes[1] = static_cast<std::uint8_t>(width);
    bytes[2] = static_cast<std::uint8_t>(height >> 8);
    bytes[3] = static_cast<std::uint8_t>(height);
  }

  std::uint8_t& direction() { return bytes[4]; }
  std::uint8_t direction() const { return bytes[4]; }
  // The mode the handle was made for; 0 for any.
  std::uint8_t& mode() { return bytes[5]; }
  std::uint8_t mode() const { return bytes[5]; }
  // 1 when the textures were prepared at a picture's size, 0 when they lie as the pack stores them.
  std::uint8_t& prepared() { return bytes[6]; }
  std::uint8_t prepared() const { return bytes[6]; }
};
static_assert(sizeof(TextureHeader) == 16);

inline constexpr std::size_t kAllocatorBytes = 16;
inline constexpr std::size_t kTextureAreaOffset =
    kAllocatorBytes + sizeof(TextureHeader) + kFilterParamsBytes;
static_assert(sizeof(FilterAllocator) <= kAllocatorBytes);

// The request for a handle's block. 40 bytes hold the allocator and the way to the first 16-byte
// boundary.
constexpr std::uint64_t handleBytes(PixelSize texture, SmallTextureSizes small) {
  return static_cast<std::uint64_t>(kPlaneCount * texture.pixels() + small.bytes()) +
         sizeof(TextureHeader) + kFilterParamsBytes + 40;
}
static_assert(handleBytes(kPackTextureSize, kStoredSmallTextures) == 14685716);
static_assert(handleBytes({1920, 1080}, smallTextureSizes(1920, 1080)) == 29034912);

// Finds the parts of a handle. Nothing is checked: the handle was made by an initialisation.
class FilterHandleView {
 public:
  explicit FilterHandleView(FilterHandle* handle) : base_(alignedBase(handle)) {}

  FilterAllocator& allocator() const { return *reinterpret_cast<FilterAllocator*>(base_); }
  TextureHeader& header() const {
    return *reinterpret_cast<TextureHeader*>(base_ + kAllocatorBytes);
  }
  std::uint8_t* params() const { return base_ + kAllocatorBytes + sizeof(TextureHeader); }

  PixelSize textureSize() const { return {header().textureWidth(), header().textureHeight()}; }
  // Plane k starts k x width x height bytes into the area; planes 1 to 3 also hold one texture of
  // three bytes a pixel.
  std::uint8_t* plane(int k) const {
    return base_ + kTextureAreaOffset + static_cast<std::size_t>(k * textureSize().pixels());
  }

  // The small textures follow the last plane, the blotch first.
  SmallTextureSizes smallTextures() const {
    const PixelSize size = textureSize();
    return header().prepared() == 1 ? smallTextureSizes(size.width, size.height)
                                    : kStoredSmallTextures;
  }
  std::uint8_t* blotch() const { return plane(kPlaneCount); }
  std::uint8_t* speck() const {
    return blotch() + static_cast<std::size_t>(smallTextures().blotch.pixels());
  }

 private:
  std::uint8_t* base_;
};

}  // namespace lumora
