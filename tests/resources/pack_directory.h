// A resource directory that initialisations accept.
#pragma once

#include "resources/texture_pack.h"
#include "support/resource_directory.h"
#include "support/test_picture.h"

namespace lumora::test {

// Holds a pack with a valid header and full of noise, so that no two textures are alike, and no
// tuning document.
class PackDirectory : public ResourceDirectory {
 public:
  PackDirectory() { write(pack(), packBytes()); }

  static const Bytes& packBytes() {
    static const Bytes bytes = [] {
      Bytes pack = noiseBytes(kPackBytes, 11);
      const std::uint8_t header[] = {4, 0, 4, 0, 11, 12, 13, 14, 15, 16, 1, 4, 1, 1, 0, 4};
      std::copy(std::begin(header), std::end(header), pack.begin());
      return pack;
    }();
    return bytes;
  }
  void overwritePack(std::size_t offset, const Bytes& bytes) const {
    std::ofstream file(pack(), std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(static_cast<std::streamoff>(offset));
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
  }
  // Makes bytes of the pack right again.
  void restorePack(std::size_t offset, std::size_t count) const {
    const auto first = packBytes().begin() + static_cast<std::ptrdiff_t>(offset);
    overwritePack(offset, Bytes(first, first + static_cast<std::ptrdiff_t>(count)));
  }
};

}  // namespace lumora::test
