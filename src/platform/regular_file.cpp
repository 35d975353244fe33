#include "platform/regular_file.h"

namespace lumora {

RegularFile::RegularFile(const char* path) : file_(openRegular(path)) {}

bool RegularFile::seekToEnd() { return ::fseeko(file_, 0, SEEK_END) == 0; }

bool RegularFile::seekToStart() { return ::fseeko(file_, 0, SEEK_SET) == 0; }

std::int64_t RegularFile::position() { return ::ftello(file_); }

std::size_t RegularFile::read(void* destination, std::size_t bytes) {
  return std::fread(destination, 1, bytes, file_);
}

void RegularFile::close() {
  if (file_ != nullptr) std::fclose(file_);
  file_ = nullptr;
}

}  // namespace lumora
