// The texture pack mixIm.dat and the sizes its textures have in a handle.
#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "modes/modes.h"

namespace lumora {

struct PixelSize {
  std::int32_t width;
  std::int32_t height;
  constexpr std::int64_t pixels() const { return std::int64_t{width} * height; }
};

// One image of the pack, stored row after row without gaps.
struct PackImage {
  const char* name;  // what people call it, unique
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

// By PackSlot.
inline constexpr PackImage kPackImages[kPackImageCount] = {
    {"shade", 0x10, kPackTextureSize, 1},        {"leak0", 0x100010, {512, 512}, 3},
    {"leak1", 0x1C0010, {512, 512}, 3},          {"leak2", 0x280010, {512, 512}, 3},
    {"leak3", 0x340010, {512, 512}, 3},          {"clouds", 0x400010, kPackTextureSize, 1},
    {"vignette", 0x500010, kPackTextureSize, 1}, {"edgeburn", 0x600010, kPackTextureSize, 1},
    {"lamp", 0x700010, kPackTextureSize, 1},     {"dusk", 0x800010, kPackTextureSize, 1},
    {"falloff", 0x900010, kPackTextureSize, 1},  {"grain", 0xA00010, kPackTextureSize, 1},
    {"blotch", 0xB00010, {48, 27}, 1},           {"speck", 0xB00520, {17, 12}, 1},
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

// The mode that uses an image of the pack.
constexpr const ModeFacts& userOf(const PackImage& image) {
  const auto slot = static_cast<int>(&image - kPackImages);
  std::uint32_t mode = 1;
  while (!kModes[mode - 1].texture.takes(slot)) ++mode;
  return kModes[mode - 1];
}

constexpr bool everyImageHasItsUser() {
  for (const PackImage& image : kPackImages) {
    if (!userOf(image).texture) return false;
  }
  return true;
}
static_assert(everyImageHasItsUser());

// The header's checked bytes: the texture size at its start, a mark at its end. The six bytes
// between them are carried and have no meaning to the library.
inline constexpr std::uint8_t kPackSizeBytes[4] = {0x04, 0x00, 0x04, 0x00};
inline constexpr std::uint32_t kPackMarkOffset = 10;
inline constexpr std::uint8_t kPackMark[6] = {0x01, 0x04, 0x01, 0x01, 0x00, 0x04};
static_assert(kPackMarkOffset + sizeof(kPackMark) == kPackHeaderBytes);

enum class PackFault { kNone, kSizeBytes, kMark };

// The first thing wrong with the header's checked bytes.
constexpr PackFault findPackFault(const std::uint8_t* header) {
  if (!std::equal(std::begin(kPackSizeBytes), std::end(kPackSizeBytes), header)) {
    return PackFault::kSizeBytes;
  }
  const bool isMarked =
      std::equal(std::begin(kPackMark), std::end(kPackMark), header + kPackMarkOffset);
  return isMarked ? PackFault::kNone : PackFault::kMark;
}

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
