#include "support/counting_heap.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "config/xml_memory.h"

namespace lumora::test {
namespace {

struct {
  int live = 0;
  int requests = 0;
  int failing = 0;
  bool allAfter = false;
} heap;

void countedRelease(void* block) {
  if (block != nullptr) --heap.live;
  std::free(block);
}

// Moves the block every time, so that the cost of growing and a pointer to the old place show.
void* countedReallocate(void* old, std::size_t bytes) {
  const int n = ++heap.requests;
  if (n == heap.failing || (heap.allAfter && n > heap.failing)) return nullptr;
  void* const block = std::malloc(bytes);
  if (block == nullptr) return nullptr;
  ++heap.live;
  if (old != nullptr) std::memcpy(block, old, std::min(bytes, malloc_usable_size(old)));
  countedRelease(old);
  return block;
}

constexpr XmlHeap kCountedHeap = {countedReallocate, countedRelease};

}  // namespace

CountingHeap::CountingHeap() {
  heap = {};
  setXmlHeap(&kCountedHeap);
}

CountingHeap::~CountingHeap() { setXmlHeap(nullptr); }

void CountingHeap::failAt(int n, bool allAfter) {
  heap.requests = 0;
  heap.failing = n;
  heap.allAfter = allAfter;
}

bool CountingHeap::hasFailed() const { return heap.failing > 0 && heap.requests >= heap.failing; }

int CountingHeap::requests() const { return heap.requests; }

int CountingHeap::liveBlocks() const { return heap.live; }

}  // namespace lumora::test
