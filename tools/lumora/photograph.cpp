#include "photograph.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string_view>

#include "errors.h"
#include "filter.h"
#include "image_library.h"

namespace lumora::tool {
namespace {

using vips::VImage;

constexpr const char* kThumbnailField = "jpeg-thumbnail-data";
constexpr const char* kUnreadable = "cannot be read, it seems damaged";

struct Format {
  const char* suffix;
  const char* options;  // of libvips's saver
  bool hasQuality;
  bool hasAlpha;
};

constexpr std::array kFormats = {
    Format{".jpg", "subsample_mode=off,optimize_coding=true", true, false},
    Format{".jpeg", "subsample_mode=off,optimize_coding=true", true, false},
    Format{".png", "", false, true},
    Format{".webp", "", true, true},
    Format{".tif", "compression=deflate,predictor=horizontal", false, true},
    Format{".tiff", "compression=deflate,predictor=horizontal", false, true},
    // The default effort would take the better part of a minute.
    Format{".avif", "compression=av1,effort=2", true, true},
    Format{".heic", "compression=hevc", true, true},
};

const Format* findFormat(const std::string& suffix) {
  const auto found = std::find_if(kFormats.begin(), kFormats.end(), [&](const Format& format) {
    return lowerCase(suffix) == format.suffix;
  });
  return found == kFormats.end() ? nullptr : &*found;
}

VImage openSource(int descriptor, vips::VOption* options) {
  return VImage::new_from_source(vips::VSource::new_from_descriptor(descriptor), "", options);
}

VImage openLazily(const std::string& path) {
  const auto options = [] {
    return VImage::option()
        ->set("access", VIPS_ACCESS_SEQUENTIAL)
        ->set("fail_on", VIPS_FAIL_ON_TRUNCATED);
  };
  if (path == "-") return openSource(STDIN_FILENO, options());
  requireReadableFile(path);
  if (vips_foreign_find_load(path.c_str()) == nullptr) {
    vips_error_clear();
    throw PictureError("is not a picture in a format that can be read here");
  }
  return VImage::new_from_file(path.c_str(), options());
}

VImage open(const std::string& path) {
  VImage image = openLazily(path).copy();
  // libvips forgets a worker's error when another worker has meanwhile come to the picture's end:
  // the damaged part would be black, and all seem well. So one worker decodes.
  image.set(VIPS_META_CONCURRENCY, 1);
  return image;
}

// Turning needs rows in another order than the file has them.
VImage turnUpright(const VImage& image) {
  return vips_image_get_orientation(image.get_image()) > 1 ? image.copy_memory().autorot() : image;
}

bool isRgb(const VImage& image) {
  const VipsInterpretation i = image.interpretation();
  return i == VIPS_INTERPRETATION_sRGB || i == VIPS_INTERPRETATION_RGB ||
         i == VIPS_INTERPRETATION_RGB16;
}

VImage toRgb(const VImage& image) {
  if (isRgb(image)) {
    // Sixteen bits shrink to the upper eight.
    const bool wide = image.interpretation() == VIPS_INTERPRETATION_RGB16;
    return image.cast(VIPS_FORMAT_UCHAR, VImage::option()->set("shift", wide));
  }
  if (image.get_typeof(VIPS_META_ICC_NAME) != 0) {
    return image.icc_transform("srgb", VImage::option()
                                           ->set("embedded", true)
                                           ->set("intent", VIPS_INTENT_RELATIVE)
                                           ->set("black_point_compensation", true));
  }
  return image.colourspace(VIPS_INTERPRETATION_sRGB).cast(VIPS_FORMAT_UCHAR);
}

bool isKept(std::string_view field) {
  constexpr std::string_view kExact[] = {VIPS_META_EXIF_NAME, VIPS_META_XMP_NAME,
                                         VIPS_META_IPTC_NAME, VIPS_META_ICC_NAME,
                                         VIPS_META_RESOLUTION_UNIT};
  return field.starts_with("exif-") || field.starts_with("png-comment-") ||
         std::find(std::begin(kExact), std::end(kExact), field) != std::end(kExact);
}

void copyFields(const VImage& from, VImage& to, bool (*wanted)(std::string_view field)) {
  char** const fields = vips_image_get_fields(from.get_image());
  for (char** field = fields; *field != nullptr; ++field) {
    GValue value = G_VALUE_INIT;
    if (!wanted(*field) || vips_image_get(from.get_image(), *field, &value) != 0) continue;
    vips_image_set(to.get_image(), *field, &value);
    g_value_unset(&value);
  }
  g_strfreev(fields);
}

// A single pixel that carries the picture's metadata, without holding on to its file.
VImage metadataOf(const VImage& image) {
  VImage carrier = VImage::black(1, 1).copy(
      VImage::option()->set("xres", image.xres())->set("yres", image.yres()));
  copyFields(image, carrier, [](std::string_view f) { return isKept(f) || f == kThumbnailField; });
  return carrier;
}

// The file's own thumbnail shows the picture as it was.
void renewThumbnail(VImage& image) {
  VImage small = image.thumbnail_image(160, VImage::option()->set("height", 160));
  if (small.has_alpha()) small = small.flatten(VImage::option()->set("background", 255));
  VipsBlob* jpeg = small.jpegsave_buffer(VImage::option()->set("Q", 75)->set("strip", true));
  std::size_t bytes = 0;
  const void* data = vips_blob_get(jpeg, &bytes);
  vips_image_set_blob_copy(image.get_image(), kThumbnailField, data, bytes);
  vips_area_unref(VIPS_AREA(jpeg));
}

Mask readMask(const std::string& path) {
  const VImage grey = turnUpright(open(path))
                          .colourspace(VIPS_INTERPRETATION_B_W)
                          .cast(VIPS_FORMAT_UCHAR)
                          .extract_band(0);
  std::size_t bytes = 0;
  const VipsBytes samples(static_cast<std::uint8_t*>(grey.write_to_memory(&bytes)));
  return {{samples.get(), samples.get() + bytes}, grey.width(), grey.height()};
}

}  // namespace

void requireReadableFile(const std::string& path) {
  struct stat status;
  if (::stat(path.c_str(), &status) != 0) {
    throw PictureError(errno == ENOENT ? "there is no such file" : std::strerror(errno));
  }
  if (S_ISDIR(status.st_mode)) throw PictureError("is a folder, not a picture");
  if (::access(path.c_str(), R_OK) != 0) throw PictureError(std::strerror(errno));
  if (S_ISREG(status.st_mode) && status.st_size == 0) throw PictureError("is empty");
}

VImage readImage(const std::string& path) {
  return explaining(kUnreadable, [&] { return toRgb(turnUpright(open(path))); });
}

Photograph Photograph::read(const std::string& path) {
  return explaining(kUnreadable, [&] { return Photograph(toRgb(turnUpright(open(path)))); });
}

Photograph Photograph::fromPixels(const std::vector<std::uint8_t>& pixels, Size size) {
  const VImage image = VImage::new_from_memory(const_cast<std::uint8_t*>(pixels.data()),
                                               pixels.size(), static_cast<int>(size.width),
                                               static_cast<int>(size.height), 4, VIPS_FORMAT_UCHAR)
                           .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
  return Photograph(image.extract_band(0, VImage::option()->set("n", 3)));
}

Photograph::Photograph(const VImage& upright)
    : size_{static_cast<unsigned>(upright.width()), static_cast<unsigned>(upright.height())} {
  requirePictureSize(size_);
  VImage image = upright;
  metadata_ = metadataOf(image);
  hasAlpha_ = image.has_alpha();
  if (!hasAlpha_) image = image.bandjoin(255);
  std::size_t bytes = 0;
  pixels_.reset(static_cast<std::uint8_t*>(image.write_to_memory(&bytes)));
}

FilterImage Photograph::image() {
  return {LUMORA_FORMAT_RGBA, pixels_.get(), size_.width, size_.height,
          static_cast<std::int32_t>(4 * size_.width)};
}

VImage Photograph::withMetadata() const {
  const auto width = static_cast<int>(size_.width);
  const auto height = static_cast<int>(size_.height);
  const std::size_t bytes = std::size_t{4} * size_.width * size_.height;
  VImage image = VImage::new_from_memory(pixels_.get(), bytes, width, height, 4, VIPS_FORMAT_UCHAR);
  if (!hasAlpha_) image = image.extract_band(0, VImage::option()->set("n", 3));
  image = image.copy(VImage::option()
                         ->set("interpretation", VIPS_INTERPRETATION_sRGB)
                         ->set("xres", metadata_.xres())
                         ->set("yres", metadata_.yres()));
  copyFields(metadata_, image, isKept);
  image.set(VIPS_META_ORIENTATION, 1);
  if (metadata_.get_typeof(kThumbnailField) != 0) renewThumbnail(image);
  return image;
}

std::vector<std::uint8_t> Photograph::encode(const std::string& suffix, int quality) const {
  const Format* format = findFormat(suffix);
  std::string options = format->options;
  if (format->hasQuality) options += text(options.empty() ? "" : ",", "Q=", quality);
  return explaining(text("cannot be written as ", format->suffix), [&] {
    VImage image = withMetadata();
    if (image.has_alpha() && !format->hasAlpha) {
      image = image.flatten(VImage::option()->set("background", 255));
    }
    void* encoded = nullptr;
    std::size_t bytes = 0;
    image.write_to_buffer(text(format->suffix, '[', options, ']').c_str(), &encoded, &bytes);
    const VipsBytes owner(static_cast<std::uint8_t*>(encoded));
    return std::vector<std::uint8_t>(owner.get(), owner.get() + bytes);
  });
}

void loadMask(LookSettings& settings) {
  if (settings.maskFile.empty()) return;
  try {
    settings.mask = explaining(kUnreadable, [&] { return readMask(settings.maskFile); });
  } catch (const PictureError& error) {
    throw PictureError(text(settings.maskFile, ": ", error.what()));
  }
}

std::string writableSuffixes() {
  std::string all;
  for (const Format& format : kFormats) all += text(all.empty() ? "" : ", ", format.suffix);
  return all;
}

bool isWritableSuffix(const std::string& suffix) { return findFormat(suffix) != nullptr; }

std::string requireWritableName(const std::string& path) {
  std::error_code missing;
  if (std::filesystem::is_directory(path, missing)) {
    throw UsageError(text(path, ": is a folder; name the picture to write in it"));
  }
  const std::string suffix = lowerCase(std::filesystem::path(path).extension().string());
  if (isWritableSuffix(suffix)) return suffix;
  throw UsageError(text(path, ": its name must end in one of ", writableSuffixes()));
}

bool isPictureSuffix(const std::string& suffix) {
  constexpr std::string_view kReadOnly[] = {".jpe", ".jfif", ".gif", ".heif", ".jxl",
                                            ".jp2", ".bmp",  ".ppm", ".pgm",  ".pnm"};
  return isWritableSuffix(suffix) || std::find(std::begin(kReadOnly), std::end(kReadOnly),
                                               lowerCase(suffix)) != std::end(kReadOnly);
}

}  // namespace lumora::tool
