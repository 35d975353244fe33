// In the module there is one file, the texture pack, whose bytes the loader has. Without them the
// pack is black behind a correct header, which serves every look that takes no texture.
#include <algorithm>
#include <cstring>
#include <string_view>

#include "platform/regular_file.h"
#include "resources/resource_files.h"
#include "resources/texture_pack.h"

// Copies bytes of the pack, 0 where it has none.
extern "C" std::uint32_t lumora_read_pack(std::uint8_t* destination, std::uint32_t offset,
                                          std::uint32_t bytes);
extern "C" std::uint32_t lumora_pack_size();

namespace lumora {
namespace {

struct Place {
  std::int64_t size;
  std::int64_t at;
};

Place place;

std::size_t readBlack(std::uint8_t* destination, std::size_t bytes) {
  std::uint8_t header[kPackHeaderBytes] = {};
  std::copy(std::begin(kPackSizeBytes), std::end(kPackSizeBytes), header);
  std::copy(std::begin(kPackMark), std::end(kPackMark), header + kPackMarkOffset);
  std::memset(destination, 0, bytes);
  for (std::size_t i = 0; i < bytes && place.at + i < sizeof header; ++i) {
    destination[i] = header[place.at + i];
  }
  return bytes;
}

ssize_t readPack(void*, char* destination, std::size_t bytes) {
  auto* const to = reinterpret_cast<std::uint8_t*>(destination);
  const auto count = static_cast<std::uint32_t>(
      std::min<std::int64_t>(static_cast<std::int64_t>(bytes), place.size - place.at));
  const std::size_t read = lumora_pack_size() == 0
                               ? readBlack(to, count)
                               : lumora_read_pack(to, static_cast<std::uint32_t>(place.at), count);
  place.at += static_cast<std::int64_t>(read);
  return static_cast<ssize_t>(read);
}

int seekPack(void*, off_t* offset, int whence) {
  const std::int64_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? place.at : place.size;
  if (base + *offset < 0 || base + *offset > place.size) return -1;
  *offset = place.at = base + *offset;
  return 0;
}

}  // namespace

std::FILE* openRegular(const char* path) {
  if (std::string_view(path) != kPackName) return nullptr;
  const std::uint32_t size = lumora_pack_size();
  place = {size == 0 ? kPackBytes : size, 0};
  return fopencookie(&place, "rb", {readPack, nullptr, seekPack, nullptr});
}

}  // namespace lumora
