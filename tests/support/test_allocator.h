// A host's allocator that counts, checks and fails on demand.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <vector>

#include "lumora/filters.h"
#include "support/guarded_buffer.h"

namespace lumora::test {

// The callbacks carry no context, so there is one TestAllocator at a time.
class TestAllocator {
 public:
  TestAllocator();
  ~TestAllocator();
  TestAllocator(const TestAllocator&) = delete;
  TestAllocator& operator=(const TestAllocator&) = delete;

  FilterAllocator* record() { return &record_; }

  // What a fresh block holds must not matter: it holds 0xA5, unless LUMORA_PLAIN_BLOCKS is set for
  // valgrind, which wants to see for itself what was never written.
  static bool fillsBlocks();

  // The n-th request from now on (1 is the next) returns null; 0 for none.
  void failAt(int n);
  // Requests above this size return null.
  void setLargestRequest(std::uint32_t bytes) { largestRequest_ = bytes; }
  // Blocks start this many bytes after a 16-byte boundary.
  void setMisalignment(std::uint32_t bytes) { misalignment_ = bytes; }
  // From now on the part of a block that may be used, from its first 16-byte boundary to `slack`
  // bytes before the size that was asked for, lies at an inaccessible page.
  void guardBlocks(Placement placement, std::uint32_t slack = 16);

  const std::vector<std::uint32_t>& requests() const { return requests_; }
  void clearRequests() { requests_.clear(); }
  // What may be used of a block that came back held what it held when it was handed out; one entry
  // for every block that came back. Only where blocks are filled.
  const std::vector<bool>& untouched() const { return untouched_; }
  // Every block came back, every call carried the library's tag and flags 0, and no byte beside the
  // guarded blocks was written.
  bool balanced() const { return live_.empty() && wellFormed_; }
  int liveBlocks() const { return static_cast<int>(live_.size()); }

 private:
  struct Block {
    std::unique_ptr<std::uint8_t[]> heap;
    std::unique_ptr<GuardedBuffer> guarded;
    std::uint8_t* handedOut = nullptr;
    std::span<std::uint8_t> filled;
  };
  Block makeBlock(std::uint32_t size) const;
  static void* allocate(std::uint32_t size, const char* tag, std::uint32_t flags);
  static void release(void* address, const char* tag, std::uint32_t flags);

  FilterAllocator record_{allocate, release};
  std::vector<std::uint32_t> requests_;
  std::vector<bool> untouched_;
  std::map<void*, Block> live_;
  std::uint32_t misalignment_ = 8;
  std::uint32_t largestRequest_ = UINT32_MAX;
  std::uint32_t slack_ = 0;  // 0: blocks are not guarded
  Placement placement_ = Placement::kBeforePage;
  int failIn_ = 0;
  bool wellFormed_ = true;
};

}  // namespace lumora::test
