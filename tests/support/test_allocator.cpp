#include "support/test_allocator.h"

#include <cstdlib>
#include <cstring>

namespace lumora::test {
namespace {

TestAllocator* current = nullptr;

bool isOurs(const char* tag, std::uint32_t flags) {
  return std::strcmp(tag, "Lumora_Filters") == 0 && flags == 0;
}

}  // namespace

TestAllocator::TestAllocator() { current = this; }

TestAllocator::~TestAllocator() {
  for (const auto& block : live_) std::free(block.second);
  current = nullptr;
}

void TestAllocator::failAt(int n) { failIn_ = n; }

void* TestAllocator::allocate(std::uint32_t size, const char* tag, std::uint32_t flags) {
  TestAllocator& self = *current;
  self.wellFormed_ = self.wellFormed_ && isOurs(tag, flags);
  self.requests_.push_back(size);
  if (self.failIn_ > 0 && --self.failIn_ == 0) return nullptr;
  // malloc's blocks start at 16-byte boundaries, or at 8-byte ones on 32-bit processors; the end of
  // the request is the end of the block, where the sanitizers watch.
  auto* const block = static_cast<char*>(std::malloc(std::size_t{size} + self.misalignment_));
  if (block == nullptr) return nullptr;
  char* const handedOut = block + self.misalignment_;
  // What a fresh block holds must not matter.
  std::memset(handedOut, 0xA5, size < (1u << 22) ? size : (1u << 22));
  self.live_[handedOut] = block;
  return handedOut;
}

void TestAllocator::release(void* address, const char* tag, std::uint32_t flags) {
  TestAllocator& self = *current;
  const auto block = self.live_.find(address);
  if (block == self.live_.end() || !isOurs(tag, flags)) {
    self.wellFormed_ = false;
    return;
  }
  std::free(block->second);
  self.live_.erase(block);
}

}  // namespace lumora::test
