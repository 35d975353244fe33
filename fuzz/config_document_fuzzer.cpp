// Any bytes as a document: the tree is sound, its numbers are those that the standard library
// reads, and an allocation that fails leaves nothing behind.
#include <algorithm>
#include <string>
#include <vector>

#include "config/encoding.h"
#include "config/number_reference.h"
#include "config/xml_parser.h"
#include "fuzz_check.h"
#include "support/counting_heap.h"

namespace lumora {
namespace {

void checkNode(const XmlNodeData& node) {
  FUZZ_CHECK(node.refCount == 1);
  FUZZ_CHECK(node.order.count() == node.children.count() + node.texts.count() +
                                       node.sections.count() + node.attributes.count());
  for (const XmlNodeData* child : node.children) {
    FUZZ_CHECK(child->parent == &node);
    FUZZ_CHECK(child->name.get()[0] != '\0');
    FUZZ_CHECK(!XmlNode(const_cast<XmlNodeData*>(&node)).childByName(child->name.get()).isEmpty());
  }
  for (const char* text : node.texts) FUZZ_CHECK(test::areNumbersRight(text));
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
  test::CountingHeap heap;
  {
    XmlOutcome outcome;
    const XmlNode node = parseText(text.c_str(), encoding, outcome);
    FUZZ_CHECK(node.isEmpty() != keepsDocument(outcome.status));
    FUZZ_CHECK(outcome.status != XmlStatus::kNoText);
    checkPosition(outcome, text);
    if (!node.isEmpty()) checkTree(node);
  }
  FUZZ_CHECK(heap.liveBlocks() == 0);

  heap.failAt(1 + static_cast<int>(text.size()) % heap.requests());
  XmlOutcome outcome;
  FUZZ_CHECK(parseText(text.c_str(), encoding, outcome).isEmpty());
  FUZZ_CHECK(outcome.status == XmlStatus::kNoText);
  FUZZ_CHECK(heap.liveBlocks() == 0);
}

}  // namespace
}  // namespace lumora

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace lumora;
  const XmlEncoding guess = guessEncoding(data, size);
  const std::string text(reinterpret_cast<const char*>(data), size);
  parse(text, guess == XmlEncoding::kUndetermined ? XmlEncoding::kGbk : guess);
  return 0;
}
