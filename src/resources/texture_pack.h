// The texture pack mixIm.dat and the sizes its textures have in a handle.
#pragma once

#include <cstdint>

namespace lumora {

struct PixelSize {
  std::int32_t width;
  std::int32_t height;
  constexpr std::int64_t pixels() const { return std::int64_t{width} * height; }
};

// One image of the pack, stored row after row without gaps.
struct PackImage {
  const char* name;  // what people call it, unique
  const char* look;  // the look that uses it
  std::uint32_t offset;
  PixelSize size;
  std::int32_t bytesPerPixel;
  constexpr std::uint32_t bytes() const {
    return static_cast<std::uint32_t>(size.pixels() * bytesPerPixel);
  }
};

inline constexpr std::uint32_t kPackBytes = 11535852;
inline constexpr std::uint32_t kPackHeaderBytes = 16;
inline constexpr PixelSize kPackTextureSize = {1024, 1024};
inline constexpr int kDirectionCount = 4;

// Indices into kPackImages.
enum PackSlot : int {
  kSlotShade,
  kSlotLeak0,  // direction 0; the three after it are for directions 1 to 3
  kSlotLeak1,
  kSlotLeak2,
  kSlotLeak3,
  kSlotClouds,
  kSlotVignette,
  kSlotEdgeBurn,
  kSlotLamp,
  kSlotDusk,
  kSlotFalloff,
  kSlotGrain,
  kSlotBlotch,
  kSlotSpeck,
  kPackImageCount
};

inline constexpr PackImage kPackImages[kPackImageCount] = {
    {"shade", "LAODIANYING", 0x10, kPackTextureSize, 1},
    {"leak0", "LIANGHONG", 0x100010, {512, 512}, 3},
    {"leak1", "LIANGHONG", 0x1C0010, {512, 512}, 3},
    {"leak2", "LIANGHONG", 0x280010, {512, 512}, 3},
    {"leak3", "LIANGHONG", 0x340010, {512, 512}, 3},
    {"clouds", "YUNDUAN", 0x400010, kPackTextureSize, 1},
    {"vignette", "EARLYBIRD", 0x500010, kPackTextureSize, 1},
    {"edgeburn", "XPRO2", 0x600010, kPackTextureSize, 1},
    {"lamp", "HUDSON", 0x700010, kPackTextureSize, 1},
    {"dusk", "MYFAIR", 0x800010, kPackTextureSize, 1},
    {"falloff", "LOFI", 0x900010, kPackTextureSize, 1},
    {"grain", "LAODIANYING", 0xA00010, kPackTextureSize, 1},
    {"blotch", "LAODIANYING", 0xB00010, {48, 27}, 1},
    {"speck", "LAODIANYING", 0xB00520, {17, 12}, 1},
};

constexpr bool packHasNoGaps() {
  std::uint32_t end = kPackHeaderBytes;
  for (const PackImage& image : kPackImages) {
    if (image.offset != end) return false;
    end += image.bytes();
  }
  return end == kPackBytes;
}
static_assert(packHasNoGaps());

// The header's checked bytes: the texture size at its start, a mark at its end. The six bytes
// between them are carried and have no meaning to the library.
inline constexpr std::uint8_t kPackSizeBytes[4] = {0x04, 0x00, 0x04, 0x00};
inline constexpr std::uint32_t kPackMarkOffset = 10;
inline constexpr std::uint8_t kPackMark[6] = {0x01, 0x04, 0x01, 0x01, 0x00, 0x04};
static_assert(kPackMarkOffset + sizeof(kPackMark) == kPackHeaderBytes);

// The two small textures of the LAODIANYING look lie one behind the other.
struct SmallTextureSizes {
  PixelSize blotch;
  PixelSize speck;
  constexpr std::int64_t bytes() const { return blotch.pixels() + speck.pixels(); }
};

inline constexpr SmallTextureSizes kStoredSmallTextures = {kPackImages[kSlotBlotch].size,
                                                           kPackImages[kSlotSpeck].size};
static_assert(kStoredSmallTextures.bytes() == 1500);

// Their sizes for a picture of width x height. Small pictures give sizes of 0: no marks.
constexpr SmallTextureSizes smallTextureSizes(std::int64_t width, std::int64_t height) {
  const std::int64_t mean = (width + height) / 2;
  return {
      {static_cast<std::int32_t>(mean * 48 / 3000), static_cast<std::int32_t>(mean * 27 / 3000)},
      {static_cast<std::int32_t>(mean * 17 / 3000),
       static_cast<std::int32_t>((width + height) / 500)}};
}

}  // namespace lumora
