// Alone in its file, so that surroundings without a file system supply their own.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/regular_file.h"

namespace lumora {
namespace {

bool isRegular(int descriptor) {
  struct stat status;
  return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

std::FILE* openRegular(const char* path) {
  // Without O_NONBLOCK the open itself would wait for a pipe's other end.
  const int descriptor = ::open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (descriptor < 0) return nullptr;
  std::FILE* const file = isRegular(descriptor) ? ::fdopen(descriptor, "rb") : nullptr;
  if (file == nullptr) ::close(descriptor);
  return file;
}

}  // namespace lumora
