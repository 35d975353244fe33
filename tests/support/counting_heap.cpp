#include "support/counting_heap.h"

#include <malloc.h>

#include <algorithm>
#include <cstring>
#include <unordered_set>

extern "C" {
void* __real_malloc(std::size_t bytes);
void* __real_realloc(void* block, std::size_t bytes);
void __real_free(void* block);
}

namespace lumora::test {
namespace {

struct {
  bool counts = false;
  std::unordered_set<void*> live;
  int requests = 0;
  int failing = 0;
  bool allAfter = false;
  std::size_t bytes = 0;
  std::size_t peakBytes = 0;
} heap;

// With the header that glibc's heap puts before each block.
std::size_t bytesOf(void* block) { return malloc_usable_size(block) + sizeof(void*); }

void countedRelease(void* block) {
  if (heap.live.erase(block) > 0) heap.bytes -= bytesOf(block);
  __real_free(block);
}

// Moves the block every time, so that the cost of growing and a pointer to the old place show.
void* countedReallocate(void* old, std::size_t bytes) {
  const int n = ++heap.requests;
  if (n == heap.failing || (heap.allAfter && n > heap.failing)) return nullptr;
  void* const block = __real_malloc(bytes);
  if (block == nullptr) return nullptr;
  heap.live.insert(block);
  heap.bytes += bytesOf(block);
  heap.peakBytes = std::max(heap.peakBytes, heap.bytes);
  if (old != nullptr) std::memcpy(block, old, std::min(bytes, malloc_usable_size(old)));
  countedRelease(old);
  return block;
}

}  // namespace

CountingHeap::CountingHeap() {
  heap = {};
  heap.counts = true;
}

CountingHeap::~CountingHeap() { heap.counts = false; }

void CountingHeap::failAt(int n, bool allAfter) {
  heap.requests = 0;
  heap.failing = n;
  heap.allAfter = allAfter;
  heap.peakBytes = heap.bytes;
}

bool CountingHeap::hasFailed() const { return heap.failing > 0 && heap.requests >= heap.failing; }

int CountingHeap::requests() const { return heap.requests; }

int CountingHeap::liveBlocks() const { return static_cast<int>(heap.live.size()); }

std::size_t CountingHeap::peakBytes() const { return heap.peakBytes; }

}  // namespace lumora::test

using namespace lumora::test;

extern "C" void* __wrap_malloc(std::size_t bytes) {
  return heap.counts ? countedReallocate(nullptr, bytes) : __real_malloc(bytes);
}

extern "C" void* __wrap_realloc(void* block, std::size_t bytes) {
  return heap.counts ? countedReallocate(block, bytes) : __real_realloc(block, bytes);
}

extern "C" void __wrap_free(void* block) {
  if (heap.counts) return countedRelease(block);
  __real_free(block);
}
