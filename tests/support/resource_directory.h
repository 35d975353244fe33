// Directories with resource files for initialisations.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "support/test_picture.h"

namespace lumora::test {

// The bytes of a texture pack full of noise: a valid header, no two textures alike.
inline Bytes noisyPack() {
  Bytes pack = noiseBytes(11535852, 11);
  const std::uint8_t header[16] = {4, 0, 4, 0, 11, 12, 13, 14, 15, 16, 1, 4, 1, 1, 0, 4};
  std::copy(header, header + 16, pack.begin());
  return pack;
}

// A new directory, removed with everything in it at the end.
class ResourceDirectory {
 public:
  ResourceDirectory() {
    std::string name = std::filesystem::temp_directory_path() / "lumora-test-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) std::abort();
    root_ = name;
  }
  ~ResourceDirectory() { std::filesystem::remove_all(root_); }
  ResourceDirectory(const ResourceDirectory&) = delete;
  ResourceDirectory& operator=(const ResourceDirectory&) = delete;

  // With the slash that initialisations want at its end.
  std::string path() const { return root_.string() + "/"; }
  std::filesystem::path pack() const { return root_ / "mixIm.dat"; }
  std::filesystem::path tuning() const { return root_ / "filter.xml"; }

  template <class Bytes>
  static void write(const std::filesystem::path& file, const Bytes& bytes) {
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
  }

 private:
  std::filesystem::path root_;
};

}  // namespace lumora::test
