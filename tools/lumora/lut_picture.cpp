#include "lut_picture.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>

#include "errors.h"
#include "lut/cube_file.h"
#include "photograph.h"
#include "picture_file.h"
#include "words.h"

namespace lumora::tool {
namespace {

using vips::VImage;

std::uint8_t toByte(float value) {
  return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0F, 1.0F) * 255));
}

// placeOf: entry number to pixel number.
template <class PlaceOf>
VImage square(const lut::Lut& lut, int side, PlaceOf placeOf) {
  std::vector<std::uint8_t> pixels(lut.entries.size() * 3);
  for (std::size_t i = 0; i < lut.entries.size(); ++i) {
    for (int channel = 0; channel < 3; ++channel) {
      pixels[3 * placeOf(i) + channel] = toByte(lut.entries[i][channel]);
    }
  }
  return VImage(vips_image_new_from_memory_copy(pixels.data(), pixels.size(), side, side, 3,
                                                VIPS_FORMAT_UCHAR))
      .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
}

bool isCubeName(const std::string& path) { return lowerCase(path).ends_with(".cube"); }

lut::Lut readCubeFile(const std::string& path) {
  // A table of the greatest size has 16.8 million lines.
  constexpr std::size_t kMostBytes = std::size_t{1} << 30;
  std::ifstream file(path, std::ios::binary);
  std::string content;
  char block[65536];
  while (file.read(block, sizeof block), file.gcount() > 0) {
    content.append(block, static_cast<std::size_t>(file.gcount()));
    if (content.size() > kMostBytes) throw PictureError("is larger than any table");
  }
  lut::Lut lut;
  const lut::CubeFault fault = lut::readCube(content, lut);
  if (!fault) return lut;
  if (fault.line == 0) throw PictureError(fault.reason);
  throw PictureError(text("line ", fault.line, ": ", fault.reason));
}

lut::Lut lutOfHald(const VImage& image) {
  const int level = static_cast<int>(std::lround(std::cbrt(image.width())));
  if (image.width() != image.height() || image.width() != level * level * level ||
      level < kLowestHaldLevel || level > kHighestHaldLevel) {
    throw PictureError(text("is no Hald picture: ", image.width(), " x ", image.height(),
                            " pixels are not those of a level from ", kLowestHaldLevel, " to ",
                            kHighestHaldLevel));
  }
  const VImage rgb = image.extract_band(0, VImage::option()->set("n", 3));
  std::size_t bytes = 0;
  const VipsBytes pixels(static_cast<std::uint8_t*>(rgb.write_to_memory(&bytes)));
  lut::Lut lut;
  lut.size = level * level;
  lut.entries.resize(lut::entryCount(false, lut.size));
  for (std::size_t i = 0; i < lut.entries.size(); ++i) {
    for (int channel = 0; channel < 3; ++channel) {
      lut.entries[i][channel] = static_cast<float>(pixels[3 * i + channel]) / 255;
    }
  }
  return lut;
}

}  // namespace

VImage haldPicture(const lut::Lut& lut) {
  const int level = static_cast<int>(std::lround(std::sqrt(lut.size)));
  return square(lut, level * level * level, [](std::size_t entry) { return entry; });
}

VImage tilesPicture(const lut::Lut& lut) {
  constexpr std::size_t kTiles = 8;
  return square(lut, kTiles * kTilesSize, [](std::size_t entry) {
    const std::size_t red = entry % kTilesSize, green = entry / kTilesSize % kTilesSize;
    const std::size_t blue = entry / (kTilesSize * kTilesSize);
    const std::size_t row = blue / kTiles * kTilesSize + green;
    return row * kTiles * kTilesSize + blue % kTiles * kTilesSize + red;
  });
}

lut::Lut readLut(const std::string& path) {
  try {
    requireReadableFile(path);
    if (isCubeName(path)) return readCubeFile(path);
    return lutOfHald(readImage(path));
  } catch (const PictureError& error) {
    throw PictureError(text(path, ": ", error.what()));
  }
}

}  // namespace lumora::tool
