#include "support/file_faults.h"

#include <cstdio>
#include <utility>

// With 64-bit sizes, which everything here is compiled with, fseeko and ftello have these names.
extern "C" {
std::FILE* __real_fdopen(int descriptor, const char* mode);
int __real_fseeko64(std::FILE* file, off_t offset, int from);
off_t __real_ftello64(std::FILE* file);
std::size_t __real_fread(void* destination, std::size_t size, std::size_t count, std::FILE* file);
}

namespace lumora::test {
namespace {

struct {
  int until = 0;  // steps; less than 1: none
  std::function<void()> happens;
} armed;

bool failsNow() {
  if (armed.until < 1 || --armed.until > 0) return false;
  if (!armed.happens) return true;
  armed.happens();
  return false;
}

}  // namespace

FileFaults::FileFaults() { failAt(0); }

FileFaults::~FileFaults() { failAt(0); }

void FileFaults::happenAt(int n, std::function<void()> happens) { armed = {n, std::move(happens)}; }

bool FileFaults::hasHappened() const { return armed.until < 1; }

}  // namespace lumora::test

using lumora::test::failsNow;

extern "C" std::FILE* __wrap_fdopen(int descriptor, const char* mode) {
  return failsNow() ? nullptr : __real_fdopen(descriptor, mode);
}

extern "C" int __wrap_fseeko64(std::FILE* file, off_t offset, int from) {
  return failsNow() ? -1 : __real_fseeko64(file, offset, from);
}

extern "C" off_t __wrap_ftello64(std::FILE* file) {
  return failsNow() ? -1 : __real_ftello64(file);
}

extern "C" std::size_t __wrap_fread(void* destination, std::size_t size, std::size_t count,
                                    std::FILE* file) {
  const std::size_t missing = failsNow() && count > 0 ? 1 : 0;
  return __real_fread(destination, size, count - missing, file);
}
