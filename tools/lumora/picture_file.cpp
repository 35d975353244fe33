#include "picture_file.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <new>
#include <string_view>
#include <utility>

#include "errors.h"

namespace lumora::tool {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kLongestStream = std::size_t{128} << 20;
constexpr std::size_t kFirstStreamBytes = std::size_t{1} << 20;
constexpr std::chrono::seconds kWaitForWriter{5};
constexpr int kWaitStepMilliseconds = 20;

[[noreturn]] void failByError(int error) {
  throw PictureError(error == ENOENT ? "there is no such file" : std::strerror(error));
}

void requireContent(const struct stat& status) {
  if (S_ISDIR(status.st_mode)) throw PictureError("is a folder, not a picture");
  if (S_ISREG(status.st_mode) && status.st_size == 0) throw PictureError("is empty");
}

// The image library maps such files, and one that another process shortens would end this one.
bool isMapped(const Format& format) {
  return format.kind == FormatKind::kWebp || format.kind == FormatKind::kGif;
}

const Format* requireFormat(const void* bytes, std::size_t count) {
  const std::string_view start(static_cast<const char*>(bytes), std::min(count, kRecognisedBytes));
  if (const Format* format = recogniseFormat(start)) return format;
  throw PictureError("is not a picture in a format that can be read here: " + readableFormats());
}

// Bytes of a pipe or device. The descriptor may or may not block.
class Stream {
 public:
  explicit Stream(int descriptor) : descriptor_(descriptor) {}

  // 0 at the end. To a descriptor that does not block, a pipe that nobody has opened for writing
  // yet looks like one at its end: that is waited for.
  std::size_t read(void* bytes, std::size_t count) {
    while (true) {
      const ssize_t got = ::read(descriptor_, bytes, count);
      if (got > 0) {
        hasBegun_ = true;
        return static_cast<std::size_t>(got);
      }
      if (got == 0 && !isUnopened()) return 0;
      if (got < 0 && errno == EAGAIN) {
        hasBegun_ = true;
        wait(-1);
      } else if (got < 0 && errno != EINTR) {
        failByError(errno);
      }
    }
  }

 private:
  bool isUnopened() {
    if (hasBegun_) return false;
    if (wait(kWaitStepMilliseconds) != 0) {
      hasBegun_ = true;
      return true;
    }
    if (Clock::now() < deadline_) return true;
    throw PictureError(
        text("is a pipe that nobody has written to for ", kWaitForWriter.count(), " seconds"));
  }

  int wait(int milliseconds) const {
    pollfd poll{descriptor_, POLLIN, 0};
    return ::poll(&poll, 1, milliseconds);
  }

  const int descriptor_;
  bool hasBegun_ = false;
  const Clock::time_point deadline_ = Clock::now() + kWaitForWriter;
};

// Grows by reallocation, which moves pages instead of copying them.
class GrowingBytes {
 public:
  GrowingBytes() = default;
  GrowingBytes(const GrowingBytes&) = delete;
  GrowingBytes& operator=(const GrowingBytes&) = delete;
  ~GrowingBytes() { g_free(bytes_); }

  const char* begin() const { return bytes_; }
  std::size_t count() const { return count_; }
  std::size_t freeCount() const { return capacity_ - count_; }
  // At least one byte.
  char* free() {
    if (count_ == capacity_) grow();
    return bytes_ + count_;
  }
  void take(std::size_t count) { count_ += count; }

  VipsBlob* release() {
    const auto release = [](void* bytes, void*) {
      g_free(bytes);
      return 0;
    };
    return vips_blob_new(release, std::exchange(bytes_, nullptr), count_);
  }

 private:
  void grow() {
    if (capacity_ == kLongestStream) {
      throw PictureError(text("is longer than ", kLongestStream >> 20,
                              " MiB, the most that is read of a pipe, a WebP or a GIF"));
    }
    const std::size_t capacity = std::max(kFirstStreamBytes, 2 * capacity_);
    void* const grown = g_try_realloc(bytes_, capacity);
    if (grown == nullptr) throw std::bad_alloc();
    bytes_ = static_cast<char*>(grown);
    capacity_ = capacity;
  }

  char* bytes_ = nullptr;
  std::size_t count_ = 0;
  std::size_t capacity_ = 0;
};

}  // namespace

void requireReadableFile(const std::string& path) {
  struct stat status;
  if (::stat(path.c_str(), &status) != 0) failByError(errno);
  requireContent(status);
  if (::access(path.c_str(), R_OK) != 0) failByError(errno);
}

PictureFile::PictureFile(const std::string& path) {
  try {
    open(path);
  } catch (...) {
    if (descriptor_ >= 0) ::close(descriptor_);
    throw;
  }
}

PictureFile::~PictureFile() {
  if (descriptor_ >= 0) ::close(descriptor_);
}

void PictureFile::open(const std::string& path) {
  descriptor_ = path == "-" ? ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                            : ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  struct stat status;
  if (descriptor_ < 0 || ::fstat(descriptor_, &status) != 0) failByError(errno);
  requireContent(status);
  if (!S_ISREG(status.st_mode)) return takeStream();
  char start[kRecognisedBytes];
  const ssize_t count = ::pread(descriptor_, start, sizeof start, 0);
  if (count < 0) failByError(errno);
  format_ = requireFormat(start, static_cast<std::size_t>(count));
  if (isMapped(*format_)) takeStream();
}

void PictureFile::takeStream() {
  Stream stream(descriptor_);
  GrowingBytes bytes;
  while (true) {
    char* const free = bytes.free();
    const std::size_t got = stream.read(free, bytes.freeCount());
    bytes.take(got);
    if (bytes.count() == 0) throw PictureError("is empty");
    if (format_ == nullptr && (got == 0 || bytes.count() >= kRecognisedBytes)) {
      format_ = requireFormat(bytes.begin(), bytes.count());
    }
    if (got == 0) break;
  }
  stream_.reset(bytes.release());
  ::close(std::exchange(descriptor_, -1));
}

vips::VSource PictureFile::source() const {
  return stream_ ? vips::VSource::new_from_blob(stream_.get())
                 : vips::VSource::new_from_descriptor(descriptor_);
}

vips::VImage PictureFile::image() const {
  vips::VImage image = format_
                           ->load(source(), vips::VImage::option()
                                                ->set("access", VIPS_ACCESS_SEQUENTIAL)
                                                ->set("fail_on", VIPS_FAIL_ON_TRUNCATED))
                           .copy();
  // libvips forgets a worker's error when another worker has meanwhile come to the picture's end:
  // the damaged part would be black, and all seem well. So one worker decodes.
  image.set(VIPS_META_CONCURRENCY, 1);
  return image;
}

int PictureFile::duplicate() const {
  if (!stream_) return ::fcntl(descriptor_, F_DUPFD_CLOEXEC, 0);
  const int descriptor = ::memfd_create("picture", MFD_CLOEXEC);
  std::size_t size = 0;
  const auto* const all = static_cast<const char*>(vips_blob_get(stream_.get(), &size));
  for (std::size_t done = 0; descriptor >= 0 && done < size;) {
    const ssize_t count = ::write(descriptor, all + done, size - done);
    if (count < 0) {
      ::close(descriptor);
      return -1;
    }
    done += static_cast<std::size_t>(count);
  }
  return descriptor;
}

bool PictureFile::read(std::uint64_t offset, void* bytes, std::size_t count) const {
  if (!stream_) {
    return offset <= INT64_MAX && ::pread(descriptor_, bytes, count, static_cast<off_t>(offset)) ==
                                      static_cast<ssize_t>(count);
  }
  std::size_t size = 0;
  const auto* const all = static_cast<const char*>(vips_blob_get(stream_.get(), &size));
  if (offset > size || count > size - offset) return false;
  std::memcpy(bytes, all + offset, count);
  return true;
}

}  // namespace lumora::tool
