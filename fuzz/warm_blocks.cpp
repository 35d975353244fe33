// Memory as the fuzz targets have it. Every initialisation asks for a block, reads a pack of 11.5
// MB into it and prepares a handle; in fresh memory that takes ten times as long as all else that
// an input does, nearly all of it page faults. Here large blocks are places in one mapping that
// stays, poisoned where no block lies, and the place of the pack shows the file, so that nothing is
// copied. The linker puts these functions in the way of the library's and the tests' own calls.
#include <sanitizer/asan_interface.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include "fuzz_check.h"
#include "resources/texture_pack.h"

namespace lumora::fuzz {
namespace {

constexpr std::size_t kPageBytes = 4096;
constexpr std::size_t kPlaceBytes = std::size_t{16} << 20;
constexpr std::size_t kSmallestBlock = std::size_t{128}
                                       << 10;  // below, the sanitizer's are as good
constexpr std::size_t kLargestBlock = kPlaceBytes - 2 * kPageBytes;
constexpr std::size_t kFilledBytes = std::size_t{256} << 10;

// A block starts at a place's second page.
struct Place {
  std::uint8_t* block = nullptr;
  std::size_t bytes = 0;
};

class WarmBlocks {
 public:
  WarmBlocks() {
    void* const mapping = mmap(nullptr, kPlaces * kPlaceBytes, PROT_READ | PROT_WRITE,
                               MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    FUZZ_CHECK(mapping != MAP_FAILED);
    first_ = static_cast<std::uint8_t*>(mapping);
    __asan_poison_memory_region(first_, kPlaces * kPlaceBytes);
  }

  // Null where there is no place for a block of this size.
  void* take(std::size_t bytes) {
    if (bytes < kSmallestBlock || bytes > kLargestBlock) return nullptr;
    if (isForPack(bytes)) return take(kPackPlace, bytes);
    // A place that was given back is the last to be taken again.
    for (int tried = 1; tried < kPlaces; ++tried) {
      last_ = last_ % (kPlaces - 1) + 1;
      if (void* const block = take(last_, bytes)) return block;
    }
    return nullptr;
  }

  // Whether the address was one of these blocks.
  bool giveBack(void* address) {
    const std::ptrdiff_t offset = static_cast<std::uint8_t*>(address) - first_;
    if (offset < 0 || offset >= static_cast<std::ptrdiff_t>(kPlaces * kPlaceBytes)) return false;
    Place& place = places_[static_cast<std::size_t>(offset) / kPlaceBytes];
    FUZZ_CHECK(place.block == address);
    __asan_poison_memory_region(place.block, place.bytes);
    place = {};
    return true;
  }

  // Where a pack's first byte belongs.
  std::uint8_t* packAddress() const { return first_ + kPageBytes; }

 private:
  static constexpr int kPlaces = 7;
  static constexpr int kPackPlace = 0;

  // A pack's block has 16 bytes more than the pack, and up to 15 that the test allocator keeps. No
  // handle that the targets ask for is that large.
  static bool isForPack(std::size_t bytes) {
    return bytes >= kPackBytes + 16 && bytes < kPackBytes + 32;
  }

  void* take(int index, std::size_t bytes) {
    Place& place = places_[index];
    if (place.block != nullptr) return nullptr;
    std::uint8_t* const start = first_ + static_cast<std::size_t>(index) * kPlaceBytes + kPageBytes;
    // But for the pack's: the pack itself starts there, at the first boundary of what the test
    // allocator hands out.
    const bool boundaryIsNext = index == kPackPlace && bytes > kPackBytes + 16;
    place = {start - (boundaryIsNext ? 16 : 0), bytes};
    __asan_unpoison_memory_region(place.block, bytes);
    if (index != kPackPlace) std::memset(place.block, 0xA5, std::min(bytes, kFilledBytes));
    return place.block;
  }

  std::uint8_t* first_;
  Place places_[kPlaces];
  int last_ = 0;
};

// Used by one thread; the library's workers ask for nothing. Lives as long as the process.
WarmBlocks& warmBlocks() {
  static WarmBlocks* const only = new WarmBlocks;
  return *only;
}

// The sanitizer fills fresh blocks, so that the test allocator does not have to.
const int plainBlocks = setenv("LUMORA_PLAIN_BLOCKS", "1", 1);

// The place of the pack shows the file from its first reading on, with every change of the file; to
// write there is a fault. There is one file in a process.
void showPack(int descriptor) {
  static const bool shown = [descriptor] {
    std::uint8_t* const to = warmBlocks().packAddress();
    return mmap(to, kPackBytes, PROT_READ, MAP_SHARED | MAP_FIXED, descriptor, 0) == to;
  }();
  FUZZ_CHECK(shown);
}

}  // namespace
}  // namespace lumora::fuzz

using lumora::fuzz::warmBlocks;

extern "C" {

void* __real_malloc(std::size_t bytes);
void __real_free(void* address);
std::size_t __real_fread(void* to, std::size_t size, std::size_t count, std::FILE* file);
void* __real__ZnamRKSt9nothrow_t(std::size_t bytes, const std::nothrow_t& nothrow);
void __real__ZdaPv(void* address);

void* __wrap_malloc(std::size_t bytes) {
  void* const block = warmBlocks().take(bytes);
  return block != nullptr ? block : __real_malloc(bytes);
}

void __wrap_free(void* address) {
  if (!warmBlocks().giveBack(address)) __real_free(address);
}

// operator new[](std::nothrow), which the test allocator uses.
void* __wrap__ZnamRKSt9nothrow_t(std::size_t bytes, const std::nothrow_t& nothrow) {
  void* const block = warmBlocks().take(bytes);
  return block != nullptr ? block : __real__ZnamRKSt9nothrow_t(bytes, nothrow);
}

// operator delete[]
void __wrap__ZdaPv(void* address) {
  if (!warmBlocks().giveBack(address)) __real__ZdaPv(address);
}

std::size_t __wrap_fread(void* to, std::size_t size, std::size_t count, std::FILE* file) {
  if (to != warmBlocks().packAddress() || size * count != lumora::kPackBytes) {
    return __real_fread(to, size, count, file);
  }
  lumora::fuzz::showPack(fileno(file));
  return count;
}

const char* __asan_default_options() { return "malloc_fill_byte=165:max_malloc_fill_size=262144"; }

}  // extern "C"
