#include "output.h"

#include <fcntl.h>
#include <limits.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <utility>

#include "errors.h"
#include "temporary_files.h"

namespace lumora::tool {
namespace {

mode_t newFileMode() {
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return 0666 & ~mask;
}

// The mask can only be read by changing it for a moment: before there is a second thread.
const mode_t kNewFileMode = newFileMode();

std::string followLinks(const std::string& path) {
  char resolved[PATH_MAX];
  return ::realpath(path.c_str(), resolved) ? resolved : path;
}

}  // namespace

int takeStandardOutput(bool verbose) {
  std::fflush(stdout);
  const int real = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  if (real < 0) throw PictureError(text("standard output is not open: ", std::strerror(errno)));
  const int elsewhere = verbose ? ::dup(STDERR_FILENO) : ::open("/dev/null", O_WRONLY);
  if (elsewhere < 0 || ::dup2(elsewhere, STDOUT_FILENO) < 0) {
    throw PictureError(text("standard output cannot be set aside: ", std::strerror(errno)));
  }
  ::close(elsewhere);
  return real;
}

Output::Output(const std::string& path) : name_(path), finalPath_(followLinks(path)) {
  struct stat status;
  const bool exists = ::stat(finalPath_.c_str(), &status) == 0;
  if (exists && S_ISDIR(status.st_mode)) {
    throw PictureError(text(name_, ": cannot be written: it is a folder"));
  }
  if (exists && !S_ISREG(status.st_mode)) {
    openDirectly();
    return;
  }
  if (exists && ::access(finalPath_.c_str(), W_OK) != 0) fail("cannot be written", errno);
  createBeside();
  ::fchmod(descriptor_, exists ? status.st_mode & 07777 : kNewFileMode);
}

Output::Output(int standardOutput) : name_("standard output"), descriptor_(standardOutput) {}

Output::~Output() {
  if (descriptor_ >= 0) ::close(descriptor_);
  if (!temporaryPath_.empty()) removeTemporary(temporaryPath_);
}

void Output::openDirectly() {
  descriptor_ = ::open(finalPath_.c_str(), O_WRONLY | O_CLOEXEC);
  if (descriptor_ < 0) fail("cannot be opened for writing", errno);
}

void Output::createBeside() {
  const std::filesystem::path path(finalPath_);
  // The name is cut, so that it and its ending always fit into a directory entry.
  const std::string hidden = text('.', path.filename().string().substr(0, 100), '.');
  descriptor_ = createTemporaryFile((path.parent_path() / hidden).string(), temporaryPath_);
  if (descriptor_ >= 0) return;
  const int error = errno;
  if (error == ENOENT || error == ENOTDIR) {
    throw PictureError(
        text(name_, ": cannot be written: there is no folder ", path.parent_path().string()));
  }
  fail("cannot be written", error);
}

void Output::write(const void* bytes, std::size_t count) {
  const char* next = static_cast<const char*>(bytes);
  while (count > 0) {
    const ssize_t written = ::write(descriptor_, next, count);
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) fail("writing failed", errno);
    next += written;
    count -= static_cast<std::size_t>(written);
  }
}

void Output::commit() {
  const int descriptor = std::exchange(descriptor_, -1);
  if (::close(descriptor) != 0) fail("writing failed", errno);
  if (temporaryPath_.empty()) return;
  if (!renameTemporaryFile(temporaryPath_, finalPath_)) fail("cannot be written", errno);
  temporaryPath_.clear();
}

void Output::fail(const char* what, int error) const {
  throw PictureError(text(name_, ": ", what, ": ", std::strerror(error)));
}

}  // namespace lumora::tool
