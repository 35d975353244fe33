// Directories with resource files for initialisations.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "resources/resource_files.h"

namespace lumora::test {

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
  std::filesystem::path pack() const { return root_ / kPackName; }
  std::filesystem::path tuning() const { return root_ / kTuningName; }

  template <class Content>
  static void write(const std::filesystem::path& file, const Content& content) {
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(content.data()),
               static_cast<std::streamsize>(content.size()));
  }

 private:
  std::filesystem::path root_;
};

}  // namespace lumora::test
