#include "platform/regular_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>

namespace lumora {
namespace {

std::atomic<RegularFile::Fault> injectedFault{nullptr};

bool faultAt(RegularFile::Step step) {
  const RegularFile::Fault fault = injectedFault.load(std::memory_order_relaxed);
  return fault != nullptr && fault(step);
}

bool isRegular(int descriptor) {
  struct stat status;
  return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

RegularFile::RegularFile(const char* path) {
  // Without O_NONBLOCK the open itself would wait for a pipe's other end.
  const int descriptor = ::open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (descriptor < 0) return;
  if (isRegular(descriptor) && !faultAt(Step::kOpen)) file_ = ::fdopen(descriptor, "rb");
  if (file_ == nullptr) ::close(descriptor);
}

bool RegularFile::seekToEnd() { return !faultAt(Step::kSeek) && ::fseeko(file_, 0, SEEK_END) == 0; }

bool RegularFile::seekToStart() {
  return !faultAt(Step::kSeek) && ::fseeko(file_, 0, SEEK_SET) == 0;
}

std::int64_t RegularFile::position() { return faultAt(Step::kPosition) ? -1 : ::ftello(file_); }

std::size_t RegularFile::read(void* destination, std::size_t bytes) {
  if (faultAt(Step::kRead) && bytes > 0) --bytes;
  return std::fread(destination, 1, bytes, file_);
}

void RegularFile::close() {
  if (file_ != nullptr) std::fclose(file_);
  file_ = nullptr;
}

void RegularFile::setFault(Fault fault) { injectedFault.store(fault); }

}  // namespace lumora
