// Photographs in files, read and written through libvips.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>
#include <vips/vips8>

#include "look_settings.h"
#include "lumora/filters.h"
#include "words.h"

namespace lumora::tool {

inline constexpr int kDefaultQuality = 92;

// Bytes that libvips has allocated.
struct VipsFree {
  void operator()(std::uint8_t* bytes) const { g_free(bytes); }
};
using VipsBytes = std::unique_ptr<std::uint8_t[], VipsFree>;

// A picture as the looks want it: upright, eight bits, red, green, blue and alpha. Pictures in
// other colour models than RGB are converted to sRGB; RGB ones keep their values and with them
// their profile.
class Photograph {
 public:
  // "-" reads standard input. Throws a PictureError without the file's name in it.
  static Photograph read(const std::string& path);

  // Packed opaque RGBA.
  static Photograph fromPixels(const std::vector<std::uint8_t>& pixels, Size size);

  Size size() const { return size_; }
  FilterImage image();
  // The picture with its profile, EXIF, XMP and resolution as a file of the format that the suffix
  // (".jpg") names.
  std::vector<std::uint8_t> encode(const std::string& suffix, int quality) const;

 private:
  explicit Photograph(const vips::VImage& upright);
  vips::VImage withMetadata() const;

  Size size_;
  bool hasAlpha_ = false;
  vips::VImage metadata_;  // a carrier without pixels
  VipsBytes pixels_;
};

// Throws a PictureError without the file's name in it.
void requireReadableFile(const std::string& path);

// A picture of any size, upright, eight bits, sRGB with or without alpha. Throws a PictureError
// without the file's name in it.
vips::VImage readImage(const std::string& path);

// Reads the picture that the settings name as mask, if any, as grey levels. The image library must
// have been started.
void loadMask(LookSettings& settings);

// The suffixes that encode() knows, for messages: ".jpg, .png, ..."
std::string writableSuffixes();
bool isWritableSuffix(const std::string& suffix);
// The suffix of a picture to be written. Throws a UsageError that names the path.
std::string requireWritableName(const std::string& path);
// Whether files named so tend to be pictures: which ones to take from a folder.
bool isPictureSuffix(const std::string& suffix);

}  // namespace lumora::tool
