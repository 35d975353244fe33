// Photographs in files, read and written through libvips.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>
#include <vips/vips8>

#include "colours.h"
#include "formats.h"
#include "look_settings.h"
#include "lumora/filters.h"
#include "metadata.h"
#include "rgba_image.h"
#include "words.h"

namespace lumora::tool {

inline constexpr int kDefaultQuality = 92;

// Bytes that libvips has allocated.
struct VipsFree {
  void operator()(void* bytes) const { g_free(bytes); }
};
using VipsBytes = std::unique_ptr<std::uint8_t[], VipsFree>;

// An image as a file of the format that the suffix (".jpg") names.
std::vector<std::uint8_t> encode(const vips::VImage& image, const Metadata& metadata,
                                 const std::string& suffix, int quality);

// A picture as the looks want it: upright, eight bits, red, green, blue and alpha. In sRGB,
// or with the profile that it had.
class Photograph {
 public:
  // "-" reads standard input. Throws a PictureError without the file's name in it.
  static Photograph read(const std::string& path, ProfileUse use = ProfileUse::kToSrgb);

  FilterImage pixels() { return pixelsOf(rgba_); }
  // Without alpha.
  vips::VImage colours() const { return fromRgba(rgba_, false); }
  // That it was read from.
  const Format& format() const { return *format_; }
  // Leaves no metadata that could hold a picture.
  void strip() { stripMetadata(metadata_); }
  // With the metadata that a file of the format can hold. The picture may be gone afterwards.
  std::vector<std::uint8_t> encode(const std::string& suffix, int quality);
  // What such a file has lost against its original, as the rest of a sentence about the picture.
  std::string lossIn(const std::string& suffix) const;

 private:
  Photograph(const vips::VImage& upright, Metadata metadata, const Format& format);

  const Format* format_;
  bool hasAlpha_ = false;
  Metadata metadata_;
  vips::VImage rgba_;
};

// A picture of any size up to the greatest, upright, eight bits, sRGB with or without alpha. Throws
// a PictureError without the file's name in it.
vips::VImage readImage(const std::string& path);

// Reads the picture that the settings name as mask, if any, as levels that are zero where it is
// black. The image library must have been started.
void loadMask(LookSettings& settings);

}  // namespace lumora::tool
