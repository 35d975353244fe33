#include "metadata.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>

#include "embedded_pictures.h"
#include "errors.h"

namespace lumora::tool {
namespace {

using vips::VImage;

constexpr const char* kThumbnailField = "jpeg-thumbnail-data";
constexpr std::string_view kItemFields = "heif-mime-";
constexpr std::string_view kXmpMark = "adobe:ns:meta/";
constexpr std::string_view kCommentFields = "png-comment-";
// A JPEG has one segment for XMP, and one for IPTC.
constexpr std::size_t kLongestSegment = 65000;
constexpr std::string_view kRawProfile = "Raw profile type";
// Of the field that has IPTC records in a TIFF file.
constexpr std::uint16_t kIptcTag = 0x83BB;
constexpr std::uint16_t kByteType = 1;

Bytes blobOf(const VImage& image, const char* field) {
  if (image.get_typeof(field) != VIPS_TYPE_BLOB) return {};
  std::size_t bytes = 0;
  const auto* const first = static_cast<const std::uint8_t*>(image.get_blob(field, &bytes));
  return {first, first + bytes};
}

void setBlob(VImage& image, const char* field, const Bytes& blob) {
  if (!blob.empty()) vips_image_set_blob_copy(image.get_image(), field, blob.data(), blob.size());
}

// Calls visit(name) with the fields whose names begin so.
template <class Visit>
void forFields(const VImage& image, std::string_view start, Visit visit) {
  char** const fields = vips_image_get_fields(image.get_image());
  for (char** field = fields; *field != nullptr; ++field) {
    if (std::string_view(*field).starts_with(start)) visit(static_cast<const char*>(*field));
  }
  g_strfreev(fields);
}

Exif readExif(const VImage& image, const PictureFile& file) {
  // The image library does not look into TIFF files for it.
  if (file.format().kind == FormatKind::kTiff) {
    return Exif::fromTiff([&file](std::uint64_t offset, void* bytes, std::size_t count) {
      return file.read(offset, bytes, count);
    });
  }
  return Exif::fromBlock(blobOf(image, VIPS_META_EXIF_NAME));
}

// In AVIF and HEIC files the image library takes it for any item with a media type.
Bytes readXmp(const VImage& image) {
  Bytes xmp = blobOf(image, VIPS_META_XMP_NAME);
  forFields(image, kItemFields, [&](const char* field) {
    Bytes item = blobOf(image, field);
    const auto found = std::search(item.begin(), item.end(), kXmpMark.begin(), kXmpMark.end());
    if (xmp.empty() && found != item.end()) xmp = std::move(item);
  });
  return xmpWithoutPictures(std::move(xmp));
}

// Raw profiles are whole blocks of other formats, with whatever pictures are in those.
bool isPlainComment(std::string_view field, const char* comment) {
  return field.find(kRawProfile) == field.npos && !holdsPicture(comment);
}

// The image library writes EXIF from fields of its own that it sets where it reads a file: the
// smallest one around the block will do.
void setExif(VImage& image, const Exif& exif) {
  const Bytes block = exif.toBlock();
  if (block.empty()) return;
  VipsBlob* const empty = VImage::black(8, 8).jpegsave_buffer(VImage::option()->set("strip", true));
  std::size_t bytes = 0;
  const auto* const first = static_cast<const std::uint8_t*>(vips_blob_get(empty, &bytes));
  Bytes jpeg(first, first + bytes);
  vips_area_unref(VIPS_AREA(empty));
  const std::size_t length = block.size() + 2;
  const std::uint8_t segment[] = {0xFF, 0xE1, static_cast<std::uint8_t>(length >> 8),
                                  static_cast<std::uint8_t>(length)};
  const auto place = jpeg.insert(jpeg.begin() + 2, std::begin(segment), std::end(segment));
  jpeg.insert(place + sizeof segment, block.begin(), block.end());

  VipsBlob* const blob = vips_blob_copy(jpeg.data(), jpeg.size());
  const VImage carrier = VImage::jpegload_buffer(blob);
  vips_area_unref(VIPS_AREA(blob));
  setBlob(image, VIPS_META_EXIF_NAME, block);
  forFields(carrier, "exif-ifd",
            [&](const char* field) { image.set(field, carrier.get_string(field)); });
}

void setThumbnail(VImage& image) {
  VImage small = image.thumbnail_image(160, VImage::option()->set("height", 160));
  if (small.has_alpha()) small = small.flatten(VImage::option()->set("background", 255));
  VipsBlob* jpeg = small.jpegsave_buffer(VImage::option()->set("Q", 75)->set("strip", true));
  std::size_t bytes = 0;
  const void* data = vips_blob_get(jpeg, &bytes);
  vips_image_set_blob_copy(image.get_image(), kThumbnailField, data, bytes);
  vips_area_unref(VIPS_AREA(jpeg));
}

std::size_t numberAt(const Bytes& bytes, std::size_t at) {
  return bytes[at] | bytes[at + 1] << 8 | bytes[at + 2] << 16 | std::size_t{bytes[at + 3]} << 24;
}

void subtractAt(Bytes& bytes, std::size_t at, std::size_t less) {
  const std::size_t number = numberAt(bytes, at) - less;
  for (std::size_t i = 0; i < 4; ++i) bytes[at + i] = static_cast<std::uint8_t>(number >> 8 * i);
}

// In a WebP file EXIF has no word in front; the image library leaves the one that JPEG files have.
void unwrapExif(Bytes& webp) {
  constexpr std::size_t kFileHead = 12, kChunkHead = 8, kLengthAt = 4;
  constexpr std::string_view kWord("Exif\0\0", 6);
  const std::string_view all(reinterpret_cast<const char*>(webp.data()), webp.size());
  for (std::size_t at = kFileHead; at + kChunkHead < all.size();) {
    const std::size_t length = numberAt(webp, at + kLengthAt);
    if (all.substr(at, 4) == "EXIF" && all.substr(at + kChunkHead).starts_with(kWord)) {
      const auto word = webp.begin() + static_cast<std::ptrdiff_t>(at + kChunkHead);
      webp.erase(word, word + kWord.size());
      subtractAt(webp, at + kLengthAt, kWord.size());
      subtractAt(webp, kLengthAt, kWord.size());
      return;
    }
    at += kChunkHead + length + length % 2;
  }
}

bool isTooLong(const Bytes& block, const Format& format) {
  return format.kind == FormatKind::kJpeg && block.size() > kLongestSegment;
}

}  // namespace

Metadata readMetadata(const VImage& image, const VImage& rgb, const PictureFile& file) {
  Metadata metadata;
  metadata.horizontalResolution = image.xres();
  metadata.verticalResolution = image.yres();
  if (image.get_typeof(VIPS_META_RESOLUTION_UNIT) != 0) {
    metadata.resolutionUnit = image.get_string(VIPS_META_RESOLUTION_UNIT);
  }
  metadata.profile = blobOf(rgb, VIPS_META_ICC_NAME);
  metadata.exif = readExif(image, file);
  metadata.xmp = readXmp(image);
  metadata.iptc = iptcWithoutPictures(blobOf(image, VIPS_META_IPTC_NAME));
  if (metadata.iptc.empty()) {
    metadata.iptc = iptcWithoutPictures(blobOf(image, VIPS_META_PHOTOSHOP_NAME));
  }
  forFields(image, kCommentFields, [&](const char* field) {
    const char* const comment = image.get_string(field);
    if (isPlainComment(field, comment)) metadata.comments.emplace_back(field, comment);
  });
  metadata.hasThumbnail = image.get_typeof(kThumbnailField) != 0;
  return metadata;
}

void stripMetadata(Metadata& metadata) {
  metadata.exif.keepShortFields();
  metadata.xmp.clear();
  metadata.iptc.clear();
  metadata.comments.clear();
  metadata.hasThumbnail = false;
}

void setMetadata(VImage& image, const Metadata& metadata, const Format& format) {
  image.set(VIPS_META_ORIENTATION, 1);
  if (!metadata.resolutionUnit.empty()) {
    image.set(VIPS_META_RESOLUTION_UNIT, metadata.resolutionUnit.c_str());
  }
  setBlob(image, VIPS_META_ICC_NAME, metadata.profile);
  if (!isTooLong(metadata.xmp, format)) setBlob(image, VIPS_META_XMP_NAME, metadata.xmp);
  if (format.kind == FormatKind::kJpeg && !isTooLong(metadata.iptc, format)) {
    setBlob(image, VIPS_META_IPTC_NAME, iptcForJpeg(metadata.iptc));
  }
  if (format.kind == FormatKind::kPng) {
    for (const auto& [field, comment] : metadata.comments)
      image.set(field.c_str(), comment.c_str());
  }
  if (format.kind == FormatKind::kTiff) return;  // see finishMetadata()
  setExif(image, metadata.exif);
  if (metadata.hasThumbnail) setThumbnail(image);
}

std::string lossIn(const Metadata& metadata, const Format& format) {
  std::string lost;
  const auto say = [&lost](const char* loss) { lost += text(lost.empty() ? "" : "; ", loss); };
  if (metadata.lostProfile) {
    say("its colour profile is damaged or not for its colours, and left out");
  }
  if (isTooLong(metadata.xmp, format)) say("its XMP is too long for a JPEG, and left out");
  if (isTooLong(metadata.iptc, format)) say("its IPTC is too long for a JPEG, and left out");
  return lost;
}

void finishMetadata(Bytes& file, const Metadata& metadata, const Format& format) {
  if (format.kind == FormatKind::kWebp) unwrapExif(file);
  if (format.kind != FormatKind::kTiff) return;
  // The image library does not write EXIF into TIFF files, and of IPTC the first quarter only.
  std::vector<ExifField> others;
  if (!metadata.iptc.empty()) {
    others.push_back(
        {kIptcTag, kByteType, static_cast<std::uint32_t>(metadata.iptc.size()), metadata.iptc});
  }
  metadata.exif.addTo(file, others);
}

}  // namespace lumora::tool
