#include "pixel_blocks.h"

#include <malloc.h>
#include <sys/mman.h>

#include <mutex>
#include <new>
#include <vector>

namespace lumora::tool {
namespace {

// What the system hands out at a time where it can.
constexpr std::size_t kLargePage = std::size_t{2} << 20;

struct Block {
  std::uint8_t* first;
  std::size_t bytes;
  bool taken;
};

// A picture takes the first block that it fits into, and one that is too small makes way for a new
// one. So there are never more blocks than pictures in work at a time.
class Blocks {
 public:
  std::uint8_t* take(std::size_t bytes) {
    const std::lock_guard lock(mutex_);
    Block* tooSmall = nullptr;
    for (Block& block : blocks_) {
      if (block.taken) continue;
      if (block.bytes >= bytes) {
        block.taken = true;
        return block.first;
      }
      tooSmall = &block;
    }
    if (tooSmall == nullptr) tooSmall = &blocks_.emplace_back();
    return renew(*tooSmall, bytes);
  }

  void give(const std::uint8_t* first) {
    const std::lock_guard lock(mutex_);
    for (Block& block : blocks_) {
      if (block.first == first) block.taken = false;
    }
  }

 private:
  static std::uint8_t* renew(Block& block, std::size_t bytes) {
    if (block.first != nullptr) ::munmap(block.first, block.bytes);
    block = {};
    const std::size_t whole = (bytes + kLargePage - 1) / kLargePage * kLargePage;
    void* const memory =
        ::mmap(nullptr, whole, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) return nullptr;
    ::madvise(memory, whole, MADV_HUGEPAGE);
    block = {static_cast<std::uint8_t*>(memory), whole, true};
    return block.first;
  }

  std::mutex mutex_;
  std::vector<Block> blocks_;
};

// Never destroyed: pictures may outlive what is static.
Blocks& blocks() {
  static Blocks& all = *new Blocks;
  return all;
}

}  // namespace

std::uint8_t* takePixelBlock(std::size_t bytes) { return blocks().take(bytes); }

void givePixelBlock(std::uint8_t* block) { blocks().give(block); }

void dropPixelsBefore(std::uint8_t* block, const std::uint8_t* end) {
  const auto past = static_cast<std::size_t>(end - block) / kLargePage * kLargePage;
  if (past > 0) ::madvise(block, past, MADV_DONTNEED);
}

void keepFreedMemory() {
#ifdef __GLIBC__
  // The greatest threshold that there may be. In a single arena what one thread has freed serves
  // the others, and nothing is too large to be kept.
  ::mallopt(M_MMAP_THRESHOLD, 32 << 20);
  ::mallopt(M_TRIM_THRESHOLD, 256 << 20);
  ::mallopt(M_ARENA_MAX, 1);
#endif
}

}  // namespace lumora::tool
