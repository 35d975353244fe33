#include "output_place.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "errors.h"
#include "standard_descriptors.h"

namespace lumora::tool {
namespace {

namespace fs = std::filesystem;
using Kind = OutputPlace::Kind;

std::string identityOf(const struct stat& status) {
  return text(status.st_dev, ':', status.st_ino);
}

OutputPlace unusable(OutputPlace place, const std::string& reason) {
  place.kind = Kind::kUnusable;
  place.reason = reason;
  return place;
}

OutputPlace placeOfDescriptor(int descriptor, OutputPlace place) {
  struct stat status;
  const int flags = ::fcntl(descriptor, F_GETFL);
  if (flags < 0 || (flags & O_ACCMODE) == O_RDONLY || ::fstat(descriptor, &status) != 0) {
    return unusable(place, "it is not open for writing");
  }
  place.kind = Kind::kDescriptor;
  place.descriptor = descriptor;
  if (S_ISREG(status.st_mode)) place.identity = identityOf(status);
  return place;
}

OutputPlace placeOfExisting(const struct stat& status, OutputPlace place) {
  switch (status.st_mode & S_IFMT) {
    case S_IFREG:
      place.kind = Kind::kFile;
      place.identity = identityOf(status);
      place.permissions = status.st_mode & 0777;
      return place;
    case S_IFCHR:
    case S_IFIFO: place.kind = Kind::kStream; return place;
    case S_IFDIR: return unusable(place, "it is a folder");
    case S_IFBLK: return unusable(place, "it is a disk");
    default: return unusable(place, "it is a socket");
  }
}

}  // namespace

std::string identityOf(const std::string& path) {
  struct stat status;
  return ::stat(path.c_str(), &status) == 0 ? identityOf(status) : std::string();
}

OutputPlace findOutputPlace(const std::string& path) {
  std::error_code failed;
  OutputPlace place;
  place.path = fs::weakly_canonical(fs::absolute(path, failed), failed).string();
  if (failed) place.path = path;
  place.identity = place.path;
  if (const auto descriptor = outputDescriptorOf(path))
    return placeOfDescriptor(*descriptor, place);

  struct stat status;
  if (::stat(path.c_str(), &status) == 0) return placeOfExisting(status, place);
  const int error = errno;
  if (::lstat(path.c_str(), &status) == 0) {
    return unusable(place, error == ENOENT ? "it is a link that leads nowhere"
                                           : text("its link: ", std::strerror(error)));
  }
  return place;
}

void requireOtherFile(const std::string& input, const std::string& output) {
  const std::string identity = identityOf(input == "-" ? "/dev/stdin" : input);
  if (identity.empty() || identity != findOutputPlace(output).identity) return;
  throw PictureError(text(output == "-" ? "standard output" : output,
                          ": is an input and would be overwritten; use another name"));
}

}  // namespace lumora::tool
