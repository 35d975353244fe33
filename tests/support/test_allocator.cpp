#include "support/test_allocator.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace lumora::test {
namespace {

TestAllocator* current = nullptr;

constexpr std::uint8_t kFilling = 0xA5;

bool isOurs(const char* tag, std::uint32_t flags) {
  return std::strcmp(tag, "Lumora_Filters") == 0 && flags == 0;
}

}  // namespace

TestAllocator::TestAllocator() { current = this; }

TestAllocator::~TestAllocator() { current = nullptr; }

bool TestAllocator::fillsBlocks() {
  static const bool plain = std::getenv("LUMORA_PLAIN_BLOCKS") != nullptr;
  return !plain;
}

void TestAllocator::failAt(int n) { failIn_ = n; }

void TestAllocator::guardBlocks(Placement placement, std::uint32_t slack) {
  placement_ = placement;
  slack_ = slack;
}

TestAllocator::Block TestAllocator::makeBlock(std::uint32_t size) const {
  Block block;
  if (slack_ == 0) {
    // new's blocks start at 16-byte boundaries, or at 8-byte ones on 32-bit processors; the end of
    // the request is the end of the block, where the sanitizers watch.
    block.heap.reset(new (std::nothrow) std::uint8_t[std::size_t{size} + misalignment_]);
    if (block.heap != nullptr) block.handedOut = block.heap.get() + misalignment_;
    return block;
  }
  // Used bytes that are no multiple of 16 end up to 15 canaries before the page.
  const std::uint32_t used = size - slack_;
  const std::uint32_t padding = (16 - used % 16) % 16;
  const bool endsAtPage = placement_ == Placement::kBeforePage;
  block.guarded = std::make_unique<GuardedBuffer>(used, placement_, endsAtPage ? padding : 0);
  // Before a page the block starts one byte after a boundary: the used part is then the next one.
  block.handedOut = block.guarded->data() - (endsAtPage ? 15 : 0);
  return block;
}

void* TestAllocator::allocate(std::uint32_t size, const char* tag, std::uint32_t flags) {
  TestAllocator& self = *current;
  self.wellFormed_ = self.wellFormed_ && isOurs(tag, flags) && size >= self.slack_;
  self.requests_.push_back(size);
  if (self.failIn_ > 0 && --self.failIn_ == 0) return nullptr;
  if (size > self.largestRequest_) return nullptr;
  Block block = self.makeBlock(size);
  if (block.handedOut == nullptr) return nullptr;
  const bool guarded = block.guarded != nullptr;
  if (fillsBlocks()) {
    block.filled = {guarded ? block.guarded->data() : block.handedOut,
                    std::min(guarded ? block.guarded->size() : size, std::size_t{1} << 22)};
    std::ranges::fill(block.filled, kFilling);
  }
  void* const handedOut = block.handedOut;
  self.live_[handedOut] = std::move(block);
  return handedOut;
}

void TestAllocator::release(void* address, const char* tag, std::uint32_t flags) {
  TestAllocator& self = *current;
  const auto found = self.live_.find(address);
  if (found == self.live_.end() || !isOurs(tag, flags)) {
    self.wellFormed_ = false;
    return;
  }
  const Block& block = found->second;
  if (block.guarded != nullptr && !block.guarded->isIntact()) self.wellFormed_ = false;
  self.untouched_.push_back(
      std::ranges::all_of(block.filled, [](std::uint8_t byte) { return byte == kFilling; }));
  self.live_.erase(found);
}

}  // namespace lumora::test
