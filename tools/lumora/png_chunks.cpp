#include "png_chunks.h"

#include <cstdint>
#include <string_view>

#include "errors.h"

namespace lumora::tool {
namespace {

constexpr std::uint64_t kSignatureBytes = 8;
constexpr std::size_t kChunkHead = 8;         // length and type
constexpr std::uint64_t kChunkFrame = 8 + 4;  // and checksum
constexpr int kMostCompressedTexts = 8;       // EXIF, IPTC, XMP and Photoshop's as raw profiles
constexpr std::size_t kLongestKeyword = 79;
constexpr int kMostChunks = 1000000;  // 8 gigabytes in the usual chunks

// An international text says behind its keyword whether it is compressed. One that ends before is
// as damaged as it is harmless.
bool isCompressedText(const PictureFile& file, std::string_view type, std::uint64_t content) {
  if (type != "iTXt") return type == "zTXt";
  char start[kLongestKeyword + 2] = {};
  file.read(content, start, sizeof start);
  const std::size_t keyword = std::string_view(start, sizeof start).find('\0');
  return keyword <= kLongestKeyword && start[keyword + 1] != 0;
}

}  // namespace

void requireFewTexts(const PictureFile& file) {
  std::uint64_t offset = kSignatureBytes;
  int texts = 0;
  for (int i = 0; i < kMostChunks; ++i) {
    std::uint8_t head[kChunkHead];
    if (!file.read(offset, head, sizeof head)) return;
    const std::string_view type(reinterpret_cast<const char*>(head) + 4, 4);
    if (type == "IEND") return;
    texts += isCompressedText(file, type, offset + kChunkHead) ? 1 : 0;
    if (texts > kMostCompressedTexts) {
      throw PictureError(text("has more than ", kMostCompressedTexts, " compressed texts"));
    }
    const std::uint32_t length =
        std::uint32_t{head[0]} << 24 | head[1] << 16 | head[2] << 8 | head[3];
    offset += length + kChunkFrame;
  }
  throw PictureError(text("has more than ", kMostChunks, " chunks"));
}

}  // namespace lumora::tool
