#include "config/xml_memory.h"

#include <atomic>
#include <cstdlib>
#include <cstring>

namespace lumora {
namespace {

constexpr XmlHeap kCHeap = {std::realloc, std::free};

std::atomic<const XmlHeap*> heapInUse{&kCHeap};

const XmlHeap& heap() { return *heapInUse.load(std::memory_order_acquire); }

}  // namespace

void setXmlHeap(const XmlHeap* other) { heapInUse.store(other != nullptr ? other : &kCHeap); }

void* xmlReallocate(void* block, std::size_t bytes) { return heap().reallocate(block, bytes); }

void xmlRelease(void* block) { heap().release(block); }

XmlText XmlText::ofSize(std::size_t bytes) {
  return XmlText(static_cast<char*>(xmlReallocate(nullptr, bytes)));
}

XmlText XmlText::copyOf(std::string_view text) {
  XmlText copy = ofSize(text.size() + 1);
  if (copy) {
    std::memcpy(copy.get(), text.data(), text.size());
    copy.get()[text.size()] = '\0';
  }
  return copy;
}

}  // namespace lumora
