// Any bytes as a document: the tree is sound, its numbers are those that the standard library
// reads, and an allocation that fails leaves nothing behind.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "config/encoding.h"
#include "config/numbers.h"
#include "config/xml_memory.h"
#include "config/xml_parser.h"
#include "fuzz_check.h"

namespace lumora {
namespace {

int liveBlocks;
int requests;
int failingRequest;

void* countedReallocate(void* block, std::size_t bytes) {
  if (++requests == failingRequest) return nullptr;
  if (block == nullptr) ++liveBlocks;
  return std::realloc(block, bytes);
}

void countedRelease(void* block) {
  if (block != nullptr) --liveBlocks;
  std::free(block);
}

constexpr XmlHeap kCountedHeap = {countedReallocate, countedRelease};

template <class T>
void checkList(const char* text) {
  constexpr int kCount = 5;
  T ours[kCount] = {}, theirs[kCount] = {};
  const int read = readNumbers(text, ours, kCount);
  std::istringstream stream(text);
  int expected = 0;
  while (expected < kCount && stream >> theirs[expected]) ++expected;
  // A stream fails at a number out of range, but stores the limit first.
  if (expected < kCount && theirs[expected] != 0) ++expected;
  FUZZ_CHECK(read == expected);
  FUZZ_CHECK(std::equal(ours, ours + kCount, theirs));
}

void checkNumbers(const char* text) {
  char* end = nullptr;
  const long long number = std::strtoll(text, &end, 10);
  std::int32_t value = 0;
  FUZZ_CHECK(readLeadingInt(text, value) == (end != text));
  FUZZ_CHECK(value == std::clamp<long long>(number, INT32_MIN, INT32_MAX));
  checkList<std::uint32_t>(text);
  checkList<std::int32_t>(text);
  checkList<std::int16_t>(text);
}

void checkNode(const XmlNodeData& node) {
  FUZZ_CHECK(node.refCount == 1);
  FUZZ_CHECK(node.order.count() == node.children.count() + node.texts.count() +
                                       node.sections.count() + node.attributes.count());
  for (const XmlNodeData* child : node.children) {
    FUZZ_CHECK(child->parent == &node);
    FUZZ_CHECK(child->name.get()[0] != '\0');
    FUZZ_CHECK(!XmlNode(const_cast<XmlNodeData*>(&node)).childByName(child->name.get()).isEmpty());
  }
  for (const char* text : node.texts) checkNumbers(text);
}

void checkTree(const XmlNode& root) {
  std::vector<const XmlNodeData*> open = {root.data()};
  while (!open.empty()) {
    const XmlNodeData* const node = open.back();
    open.pop_back();
    checkNode(*node);
    open.insert(open.end(), node->children.begin(), node->children.end());
  }
}

void checkPosition(const XmlOutcome& outcome, const std::string& text) {
  const auto lines = 1 + std::count(text.begin(), text.end(), '\n');
  FUZZ_CHECK(outcome.line >= 1 && outcome.line <= lines);
  FUZZ_CHECK(outcome.column >= 1 && outcome.column <= static_cast<std::int64_t>(text.size()) + 1);
}

void parse(const std::string& text, XmlEncoding encoding) {
  requests = 0;
  failingRequest = 0;
  {
    XmlOutcome outcome;
    const XmlNode node = parseText(text.c_str(), encoding, outcome);
    FUZZ_CHECK(node.isEmpty() != keepsDocument(outcome.status));
    FUZZ_CHECK(outcome.status != XmlStatus::kNoText);
    checkPosition(outcome, text);
    if (!node.isEmpty()) checkTree(node);
  }
  FUZZ_CHECK(liveBlocks == 0);

  failingRequest = 1 + static_cast<int>(text.size()) % requests;
  requests = 0;
  XmlOutcome outcome;
  FUZZ_CHECK(parseText(text.c_str(), encoding, outcome).isEmpty());
  FUZZ_CHECK(outcome.status == XmlStatus::kNoText);
  FUZZ_CHECK(liveBlocks == 0);
}

}  // namespace
}  // namespace lumora

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace lumora;
  setXmlHeap(&kCountedHeap);
  const XmlEncoding guess = guessEncoding(data, size);
  const std::string text(reinterpret_cast<const char*>(data), size);
  parse(text, guess == XmlEncoding::kUndetermined ? XmlEncoding::kGbk : guess);
  return 0;
}
