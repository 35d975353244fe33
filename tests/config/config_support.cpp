#include "config/config_support.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "config/xml_memory.h"

namespace lumora::test {
namespace {

struct {
  int live = 0;
  int untilFailure = 0;
  bool allAfter = false;
  bool failed = false;
} heap;

bool isRefused() {
  if (heap.failed && heap.allAfter) return true;
  if (heap.untilFailure == 0 || --heap.untilFailure > 0) return false;
  heap.failed = true;
  return true;
}

// In front of every block.
struct alignas(std::max_align_t) BlockHeader {
  std::size_t bytes;
};

BlockHeader* headerOf(void* block) { return static_cast<BlockHeader*>(block) - 1; }

void countedRelease(void* block) {
  if (block == nullptr) return;
  --heap.live;
  std::free(headerOf(block));
}

// Moves the block every time, so that the cost of growing and a pointer to the old place show.
void* countedReallocate(void* block, std::size_t bytes) {
  if (isRefused()) return nullptr;
  auto* const header = static_cast<BlockHeader*>(std::malloc(sizeof(BlockHeader) + bytes));
  if (header == nullptr) return nullptr;
  header->bytes = bytes;
  ++heap.live;
  if (block != nullptr) {
    std::memcpy(header + 1, block, std::min(bytes, headerOf(block)->bytes));
    countedRelease(block);
  }
  return header + 1;
}

constexpr XmlHeap kCountedHeap = {countedReallocate, countedRelease};

std::string dump(const XmlNodeData& node);

std::string dumpItem(const XmlNodeData& node, int index, XmlItemKind kind) {
  switch (kind) {
    case XmlItemKind::kChild: return dump(*node.children[index]);
    case XmlItemKind::kText: return '"' + std::string(node.texts[index]) + '"';
    case XmlItemKind::kAttribute:
      return std::string("@") + node.attributes[index].name + "=" + node.attributes[index].value;
    default: {
      const XmlSection& section = node.sections[index];
      return std::string(section.opener) + section.content + section.closer;
    }
  }
}

std::string dump(const XmlNodeData& node) {
  std::string text = node.isDeclaration ? "?" : "";
  text += node.name ? node.name.get() : "";
  text += "(";
  for (const std::uint32_t entry : node.order) {
    if (text.back() != '(') text += ' ';
    text += dumpItem(node, static_cast<int>(entry / 4), static_cast<XmlItemKind>(entry % 4));
  }
  return text + ")";
}

}  // namespace

TemporaryFile::TemporaryFile(std::string_view bytes) {
  static std::atomic<int> count = 0;
  path_ = testing::TempDir() + "lumora_config_" + std::to_string(getpid()) + "_" +
          std::to_string(++count) + ".xml";
  rewrite(bytes);
}

TemporaryFile::~TemporaryFile() { std::remove(path()); }

void TemporaryFile::rewrite(std::string_view bytes) const {
  std::FILE* const file = std::fopen(path(), "wb");
  ASSERT_NE(file, nullptr) << path_;
  EXPECT_EQ(std::fwrite(bytes.data(), 1, bytes.size(), file), bytes.size());
  EXPECT_EQ(std::fclose(file), 0);
}

CountingHeap::CountingHeap() {
  heap = {};
  setXmlHeap(&kCountedHeap);
}

CountingHeap::~CountingHeap() { setXmlHeap(nullptr); }

void CountingHeap::failAt(int n, bool allAfter) {
  heap.untilFailure = n;
  heap.allAfter = allAfter;
  heap.failed = false;
}

bool CountingHeap::hasFailed() const { return heap.failed; }

int CountingHeap::liveBlocks() const { return heap.live; }

std::string document(std::string_view configContent) {
  return paddedTo(200, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Config>" +
                           std::string(configContent) + "</Config>\n");
}

std::string paddedTo(std::size_t bytes, std::string text) {
  if (text.size() < bytes) text.append(bytes - text.size(), ' ');
  return text;
}

std::string dump(const XmlNode& node) { return node.isEmpty() ? "empty" : dump(*node.data()); }

}  // namespace lumora::test
