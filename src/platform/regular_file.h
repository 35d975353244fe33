// Reading of resource files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace lumora {

// Opens a regular file for reading; null for anything else. The caller closes it.
std::FILE* openRegular(const char* path);

// A file that closes itself. Only regular files open: a directory, device or pipe in the place of a
// resource file counts as one that cannot be opened, and never blocks.
class RegularFile {
 public:
  explicit RegularFile(const char* path);
  RegularFile(const RegularFile&) = delete;
  RegularFile& operator=(const RegularFile&) = delete;
  ~RegularFile() { close(); }

  explicit operator bool() const { return file_ != nullptr; }
  [[nodiscard]] bool seekToEnd();
  [[nodiscard]] bool seekToStart();
  // Bytes from the start, or -1.
  std::int64_t position();
  // The count of bytes read, less than asked for at the end of the file or on an error.
  std::size_t read(void* destination, std::size_t bytes);
  void close();

 private:
  std::FILE* file_ = nullptr;
};

}  // namespace lumora
