#include "formats.h"

#include <algorithm>
#include <array>
#include <filesystem>

#include "errors.h"
#include "words.h"

namespace lumora::tool {
namespace {

using vips::VImage;

constexpr const char* kJpegSuffixes[] = {".jpg", ".jpeg", ".jpe", ".jfif"};
constexpr const char* kPngSuffixes[] = {".png"};
constexpr const char* kWebpSuffixes[] = {".webp"};
constexpr const char* kTiffSuffixes[] = {".tif", ".tiff"};
constexpr const char* kAvifSuffixes[] = {".avif"};
constexpr const char* kHeicSuffixes[] = {".heic", ".heif"};
constexpr const char* kGifSuffixes[] = {".gif"};

bool isJpeg(std::string_view start) { return start.starts_with("\xFF\xD8\xFF"); }
bool isPng(std::string_view start) { return start.starts_with("\x89PNG\r\n\x1A\n"); }
bool isGif(std::string_view start) {
  return start.starts_with("GIF87a") || start.starts_with("GIF89a");
}

bool isWebp(std::string_view start) {
  return start.size() >= 12 && start.starts_with("RIFF") && start.substr(8, 4) == "WEBP";
}

// Either byte order, 32-bit or 64-bit offsets.
bool isTiff(std::string_view start) {
  using namespace std::string_view_literals;
  constexpr std::string_view kMarks[] = {"II*\0"sv, "MM\0*"sv, "II+\0"sv, "MM\0+"sv};
  return std::any_of(std::begin(kMarks), std::end(kMarks),
                     [&](std::string_view mark) { return start.starts_with(mark); });
}

// The brand stands behind the length and the type of the first box.
bool hasBrand(std::string_view start, std::span<const std::string_view> brands) {
  if (start.size() < 12 || start.substr(4, 4) != "ftyp") return false;
  return std::find(brands.begin(), brands.end(), start.substr(8, 4)) != brands.end();
}

bool isAvif(std::string_view start) {
  constexpr std::string_view kBrands[] = {"avif", "avis"};
  return hasBrand(start, kBrands);
}

bool isHeic(std::string_view start) {
  constexpr std::string_view kBrands[] = {"heic", "heix", "hevc", "hevx", "heim",
                                          "heis", "hevm", "hevs", "mif1", "msf1"};
  return hasBrand(start, kBrands);
}

// Left out on purpose: everything that the image library itself calls unfit for untrusted files
// (PPM and JPEG XL among them), and with it all that runs programs or opens further files.
constexpr std::array kFormats = {
    Format{FormatKind::kJpeg, "JPEG", kJpegSuffixes, isJpeg, VImage::jpegload_source,
           "VipsForeignLoadJpeg", "subsample_mode=off,optimize_coding=true", true, false},
    Format{FormatKind::kPng, "PNG", kPngSuffixes, isPng, VImage::pngload_source,
           "VipsForeignLoadPng", "", false, true},
    Format{FormatKind::kWebp, "WebP", kWebpSuffixes, isWebp, VImage::webpload_source,
           "VipsForeignLoadWebp", "", true, true},
    Format{FormatKind::kTiff, "TIFF", kTiffSuffixes, isTiff, VImage::tiffload_source,
           "VipsForeignLoadTiff", "compression=deflate,predictor=horizontal", false, true},
    // The default effort would take the better part of a minute.
    Format{FormatKind::kAvif, "AVIF", kAvifSuffixes, isAvif, VImage::heifload_source,
           "VipsForeignLoadHeif", "compression=av1,effort=2", true, true, true},
    Format{FormatKind::kHeic, "HEIC", kHeicSuffixes, isHeic, VImage::heifload_source,
           "VipsForeignLoadHeif", "compression=hevc", true, true, true},
    Format{FormatKind::kGif, "GIF", kGifSuffixes, isGif, VImage::gifload_source,
           "VipsForeignLoadNsgif", nullptr, false, false},
};

const Format* findFormat(const std::string& suffix) {
  const auto found = std::find_if(kFormats.begin(), kFormats.end(), [&](const Format& format) {
    return std::find(format.suffixes.begin(), format.suffixes.end(), lowerCase(suffix)) !=
           format.suffixes.end();
  });
  return found == kFormats.end() ? nullptr : &*found;
}

void add(std::string& list, const char* word) { list += text(list.empty() ? "" : ", ", word); }

}  // namespace

std::span<const Format> formats() { return kFormats; }

const Format* recogniseFormat(std::string_view start) {
  const auto found = std::find_if(kFormats.begin(), kFormats.end(),
                                  [&](const Format& format) { return format.recognises(start); });
  return found == kFormats.end() ? nullptr : &*found;
}

const Format* findWrittenFormat(const std::string& suffix) {
  const Format* format = findFormat(suffix);
  return format != nullptr && format->saverOptions != nullptr ? format : nullptr;
}

std::string readableFormats() {
  std::string all;
  for (const Format& format : kFormats) add(all, format.name);
  return all;
}

std::string writableSuffixes() {
  std::string all;
  for (const Format& format : kFormats) {
    if (format.saverOptions == nullptr) continue;
    for (const char* suffix : format.suffixes) add(all, suffix);
  }
  return all;
}

bool isWritableSuffix(const std::string& suffix) { return findWrittenFormat(suffix) != nullptr; }

bool isPictureSuffix(const std::string& suffix) { return findFormat(suffix) != nullptr; }

std::string requireWritableName(const std::string& path) {
  std::error_code missing;
  if (std::filesystem::is_directory(path, missing)) {
    throw UsageError(text(path, ": is a folder; name the picture to write in it"));
  }
  const std::string suffix = lowerCase(std::filesystem::path(path).extension().string());
  if (isWritableSuffix(suffix)) return suffix;
  throw UsageError(text(path, ": its name must end in one of ", writableSuffixes()));
}

}  // namespace lumora::tool
