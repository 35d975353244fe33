#include "support/guarded_buffer.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define __SANITIZE_ADDRESS__ 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#endif

namespace lumora::test {
namespace {

constexpr std::uint8_t kCanary = 0xC7;

bool areCanaries(const std::uint8_t* begin, const std::uint8_t* end) {
  return std::all_of(begin, end, [](std::uint8_t byte) { return byte == kCanary; });
}

}  // namespace

GuardedBuffer::GuardedBuffer(std::size_t bytes, Placement placement, std::size_t gap)
    : bytes_(bytes) {
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  const std::size_t inner = (bytes + gap + page - 1) / page * page;
  mappedBytes_ = inner + 2 * page;
  void* const mapping =
      mmap(nullptr, mappedBytes_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (mapping == MAP_FAILED) std::abort();
  mapping_ = static_cast<std::uint8_t*>(mapping);
  first_ = mapping_ + page;
  end_ = first_ + inner;
  if (inner > 0 && mprotect(first_, inner, PROT_READ | PROT_WRITE) != 0) std::abort();
  data_ = placement == Placement::kBeforePage ? end_ - gap - bytes : first_;
  std::memset(first_, kCanary, static_cast<std::size_t>(data_ - first_));
  std::memset(data_ + bytes, kCanary, static_cast<std::size_t>(end_ - data_) - bytes);
  lock(true);
}

GuardedBuffer::GuardedBuffer(const std::vector<std::uint8_t>& content)
    : GuardedBuffer(content.size()) {
  std::copy(content.begin(), content.end(), data_);
}

GuardedBuffer::~GuardedBuffer() {
  lock(false);
  munmap(mapping_, mappedBytes_);
}

bool GuardedBuffer::isIntact() const {
  lock(false);
  const bool intact = areCanaries(first_, data_) && areCanaries(data_ + bytes_, end_);
  lock(true);
  return intact;
}

void GuardedBuffer::lock(bool locked) const {
#if defined(__SANITIZE_ADDRESS__)
  const auto set = locked ? __asan_poison_memory_region : __asan_unpoison_memory_region;
  set(first_, static_cast<std::size_t>(data_ - first_));
  set(data_ + bytes_, static_cast<std::size_t>(end_ - data_) - bytes_);
#else
  static_cast<void>(locked);
#endif
}

}  // namespace lumora::test
