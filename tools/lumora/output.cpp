#include "output.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>

#include "errors.h"
#include "temporary_files.h"

namespace lumora::tool {
namespace {

namespace fs = std::filesystem;

mode_t newFileMode() {
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return 0666 & ~mask;
}

// The mask can only be read by changing it for a moment: before there is a second thread.
const mode_t kNewFileMode = newFileMode();

}  // namespace

Output::Output(const std::string& path, const OutputRules& rules)
    : name_(path == "-" ? "standard output" : path), place_(findOutputPlace(path)), rules_(rules) {
  switch (place_.kind) {
    case OutputPlace::Kind::kUnusable:
      throw PictureError(text(name_, ": cannot be written: ", place_.reason));
    case OutputPlace::Kind::kDescriptor:
      descriptor_ = ::fcntl(place_.descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
      if (descriptor_ < 0) fail("cannot be written", errno);
      break;
    case OutputPlace::Kind::kStream: openDirectly(); break;
    case OutputPlace::Kind::kFile:
      if (!rules_.force) refuseExisting();
      if (::access(place_.path.c_str(), W_OK) != 0) fail("cannot be written", errno);
      createBeside();
      ::fchmod(descriptor_, place_.permissions);
      break;
    case OutputPlace::Kind::kFree:
      createBeside();
      ::fchmod(descriptor_, kNewFileMode);
      break;
  }
}

Output::~Output() {
  if (descriptor_ >= 0) ::close(descriptor_);
  if (!temporaryPath_.empty()) removeTemporary(temporaryPath_);
}

// Does not wait for a pipe's reader: nobody may ever come, and other pictures wait behind.
void Output::openDirectly() {
  descriptor_ = ::open(place_.path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
  if (descriptor_ >= 0) return;
  if (errno == ENXIO) throw PictureError(text(name_, ": cannot be written: nobody reads from it"));
  fail("cannot be opened for writing", errno);
}

void Output::createBeside() {
  const fs::path path(place_.path);
  // The name is cut, so that it and its ending always fit into a directory entry.
  const std::string hidden = text('.', path.filename().string().substr(0, 100), '.');
  descriptor_ = createTemporaryFile((path.parent_path() / hidden).string(), temporaryPath_);
  if (descriptor_ >= 0) return;
  const int error = errno;
  if (error == ENOENT || error == ENOTDIR) {
    throw PictureError(text(name_, ": cannot be written: there is no folder ",
                            fs::path(name_).parent_path().string()));
  }
  fail("cannot be written", error);
}

void Output::write(const void* bytes, std::size_t count) {
  const char* next = static_cast<const char*>(bytes);
  while (count > 0) {
    const ssize_t written = ::write(descriptor_, next, count);
    if (written < 0 && errno == EINTR) continue;
    if (written < 0 && errno == EAGAIN) {
      pollfd ready{descriptor_, POLLOUT, 0};
      ::poll(&ready, 1, -1);
      continue;
    }
    if (written < 0) fail("writing failed", errno);
    next += written;
    count -= static_cast<std::size_t>(written);
  }
}

void Output::commit() {
  const int descriptor = std::exchange(descriptor_, -1);
  if (::close(descriptor) != 0) fail("writing failed", errno);
  if (temporaryPath_.empty()) return;
  if (!renameTemporaryFile(temporaryPath_, place_.path, rules_.force, rules_.backup)) {
    if (errno == EEXIST && !rules_.force) refuseExisting();
    fail(errno == EEXIST ? "its backup cannot be made" : "cannot be written", errno);
  }
  temporaryPath_.clear();
}

void Output::finish(const void* bytes, std::size_t count) {
  write(bytes, count);
  commit();
}

void makeFolder(const std::string& folder) {
  if (folder.empty()) return;
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) throw PictureError(text(folder, ": cannot be made a folder: ", error.message()));
}

void Output::fail(const char* what, int error) const {
  throw PictureError(text(name_, ": ", what, ": ", std::strerror(error)));
}

void Output::refuseExisting() const {
  throw PictureError(text(name_, ": exists already; --force replaces it"));
}

}  // namespace lumora::tool
