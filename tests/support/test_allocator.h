// A host's allocator that counts, checks and fails on demand.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "lumora/filters.h"

namespace lumora::test {

// The callbacks carry no context, so there is one TestAllocator at a time.
class TestAllocator {
 public:
  TestAllocator();
  ~TestAllocator();
  TestAllocator(const TestAllocator&) = delete;
  TestAllocator& operator=(const TestAllocator&) = delete;

  FilterAllocator* record() { return &record_; }

  // The n-th request from now on (1 is the next) returns null; 0 for none.
  void failAt(int n);
  // Blocks start this many bytes after a 16-byte boundary.
  void setMisalignment(std::uint32_t bytes) { misalignment_ = bytes; }

  const std::vector<std::uint32_t>& requests() const { return requests_; }
  void clearRequests() { requests_.clear(); }
  // Every block came back, and every call carried the library's tag and flags 0.
  bool balanced() const { return live_.empty() && wellFormed_; }
  int liveBlocks() const { return static_cast<int>(live_.size()); }

 private:
  static void* allocate(std::uint32_t size, const char* tag, std::uint32_t flags);
  static void release(void* address, const char* tag, std::uint32_t flags);

  FilterAllocator record_{allocate, release};
  std::vector<std::uint32_t> requests_;
  std::map<void*, void*> live_;  // handed out -> to free
  std::uint32_t misalignment_ = 8;
  int failIn_ = 0;
  bool wellFormed_ = true;
};

}  // namespace lumora::test
