#include "support/guarded_buffer.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace lumora::test {
namespace {

constexpr std::uint8_t kCanary = 0xC7;

}  // namespace

GuardedBuffer::GuardedBuffer(std::size_t bytes) : bytes_(bytes) {
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  const std::size_t inner = (bytes + page - 1) / page * page;
  mappedBytes_ = inner + 2 * page;
  void* const mapping =
      mmap(nullptr, mappedBytes_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapping == MAP_FAILED) std::abort();
  mapping_ = static_cast<std::uint8_t*>(mapping);
  mprotect(mapping_, page, PROT_NONE);
  mprotect(mapping_ + page + inner, page, PROT_NONE);
  front_ = mapping_ + page;
  data_ = front_ + (inner - bytes);
  std::memset(front_, kCanary, inner - bytes);
}

GuardedBuffer::~GuardedBuffer() { munmap(mapping_, mappedBytes_); }

bool GuardedBuffer::frontIsIntact() const {
  return std::all_of(front_, data_, [](std::uint8_t byte) { return byte == kCanary; });
}

}  // namespace lumora::test
