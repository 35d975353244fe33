#include "photograph.h"

#include <algorithm>
#include <utility>

#include "colours.h"
#include "decoding_process.h"
#include "errors.h"
#include "filter.h"
#include "image_library.h"
#include "picture_file.h"
#include "png_chunks.h"

namespace lumora::tool {
namespace {

using vips::VImage;

constexpr const char* kUnreadable = "cannot be read, it seems damaged";

// Pixels are not decoded, or decoded as they are asked for, from top to bottom.
VImage open(const PictureFile& file) {
  if (file.format().kind == FormatKind::kPng) requireFewTexts(file);
  return file.image();
}

Size sizeOf(const VImage& image) {
  return {static_cast<unsigned>(image.width()), static_cast<unsigned>(image.height())};
}

// Masks and textures may be small; a header's word alone shall not take all memory.
void requireDecodableSize(const VImage& image) {
  const Size size = sizeOf(image);
  if (std::max(size.width, size.height) <= LUMORA_LONGEST_SIDE) return;
  throw PictureError(text("is ", size.width, " x ", size.height, " pixels; at most ",
                          LUMORA_LONGEST_SIDE, " on either side can be read"));
}

// What the header says of the size is checked by now.
VImage decodable(const VImage& header, const PictureFile& file) {
  return file.format().hidesSize ? decodeApart(header, file) : header;
}

// Turning needs rows in another order than the file has them.
VImage turnUpright(const VImage& image) {
  return vips_image_get_orientation(image.get_image()) > 1 ? image.copy_memory().autorot() : image;
}

host::Mask readMask(const PictureFile& file) {
  const VImage header = open(file);
  requireDecodableSize(header);
  const VImage rgb = turnUpright(toRgb(decodable(header, file)).image);
  const VImage levels = rgb.extract_band(0, VImage::option()->set("n", 3)).bandor();
  std::size_t bytes = 0;
  const VipsBytes samples(static_cast<std::uint8_t*>(levels.write_to_memory(&bytes)));
  return {{samples.get(), samples.get() + bytes}, levels.width(), levels.height()};
}

VImage encodable(const VImage& picture, const Metadata& metadata, const Format& format) {
  VImage image = picture.copy(VImage::option()
                                  ->set("xres", metadata.horizontalResolution)
                                  ->set("yres", metadata.verticalResolution));
  setMetadata(image, metadata, format);
  if (!image.has_alpha() || format.hasAlpha) return image;
  return image.flatten(VImage::option()->set("background", 255));
}

// imageFor: makes the image that a file of the format is written from.
template <class ImageFor>
std::vector<std::uint8_t> encodeBy(const Metadata& metadata, const std::string& suffix, int quality,
                                   ImageFor imageFor) {
  const Format& format = *findWrittenFormat(suffix);
  std::string options = format.saverOptions;
  if (format.hasQuality) options += text(options.empty() ? "" : ",", "Q=", quality);
  return explaining(text("cannot be written as ", suffix), [&] {
    void* encoded = nullptr;
    std::size_t bytes = 0;
    imageFor(format).write_to_buffer(text(format.suffixes.front(), '[', options, ']').c_str(),
                                     &encoded, &bytes);
    const VipsBytes owner(static_cast<std::uint8_t*>(encoded));
    std::vector<std::uint8_t> file(owner.get(), owner.get() + bytes);
    finishMetadata(file, metadata, format);
    return file;
  });
}

}  // namespace

std::vector<std::uint8_t> encode(const VImage& image, const Metadata& metadata,
                                 const std::string& suffix, int quality) {
  return encodeBy(metadata, suffix, quality,
                  [&](const Format& format) { return encodable(image, metadata, format); });
}

VImage readImage(const std::string& path) {
  const PictureFile file(path);
  return explaining(kUnreadable, [&] {
    const VImage header = open(file);
    requireDecodableSize(header);
    return turnUpright(toRgb(decodable(header, file)).image);
  });
}

Photograph Photograph::read(const std::string& path, ProfileUse use) {
  const PictureFile file(path);
  return explaining(kUnreadable, [&] {
    const VImage header = open(file);
    requirePictureSize(sizeOf(header));
    const VImage image = decodable(header, file);
    const Rgb rgb = toRgb(image, use);
    Metadata metadata = readMetadata(image, rgb.image, file);
    metadata.lostProfile = rgb.lostProfile;
    return Photograph(turnUpright(rgb.image), std::move(metadata), file.format());
  });
}

Photograph::Photograph(const VImage& upright, Metadata metadata, const Format& format)
    : format_(&format), hasAlpha_(upright.bands() == 4), metadata_(std::move(metadata)) {
  requirePictureSize(sizeOf(upright));
  rgba_ = toRgba(upright);
}

std::string Photograph::lossIn(const std::string& suffix) const {
  return tool::lossIn(metadata_, *findWrittenFormat(suffix));
}

std::vector<std::uint8_t> Photograph::encode(const std::string& suffix, int quality) {
  return encodeBy(metadata_, suffix, quality, [&](const Format& format) {
    const VImage image = encodable(fromRgba(rgba_, hasAlpha_), metadata_, format);
    // The encoder's memory grows as it reads. A step that may be done again needs the pixels again.
    const bool isRepeatable = hasSeveralImageThreads();
    return hasAlpha_ || isRepeatable ? image : consumeRgba(rgba_, image);
  });
}

void loadMask(LookSettings& settings) {
  if (settings.maskFile.empty()) return;
  try {
    const PictureFile file(settings.maskFile);
    settings.values.mask = explaining(kUnreadable, [&] { return readMask(file); });
  } catch (const PictureError& error) {
    throw PictureError(text(settings.maskFile, ": ", error.what()));
  }
}

}  // namespace lumora::tool
