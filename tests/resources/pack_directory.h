// A resource directory that initialisations accept.
#pragma once

#include "support/resource_directory.h"

namespace lumora::test {

// Holds a pack full of noise, and no tuning document.
class PackDirectory : public ResourceDirectory {
 public:
  PackDirectory() { write(pack(), packBytes()); }

  static const Bytes& packBytes() {
    static const Bytes bytes = noisyPack();
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
