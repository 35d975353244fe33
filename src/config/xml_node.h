// The element tree: reference-counted records and the handles to them.
#pragma once

#include <cstdint>
#include <string_view>
#include <utility>

#include "config/xml_memory.h"

namespace lumora {

// Kept as it stands in the document; opener and closer point into the table of section kinds.
struct XmlSection {
  char* content;
  const char* opener;
  const char* closer;
};

struct XmlAttribute {
  char* name;
  char* value;
};

enum class XmlItemKind : std::uint32_t { kChild = 0, kText = 1, kSection = 2, kAttribute = 3 };

// One element, or the nameless node above the outermost ones. It owns all that it points to except
// its parent; a child in the list counts as one handle to it.
struct XmlNodeData {
  XmlText name;
  XmlArray<XmlNodeData*> children;
  XmlArray<char*> texts;
  XmlArray<XmlSection> sections;
  XmlArray<XmlAttribute> attributes;
  XmlArray<std::uint32_t> order;  // all items as they came: 4 x index in its own array + kind
  XmlNodeData* parent = nullptr;
  std::int32_t refCount = 0;
  bool isDeclaration = false;  // opened by "<?"

  ~XmlNodeData();

  // A node that no handle points to yet, or null.
  static XmlNodeData* create();

  // These report exhausted memory, and then nothing has been added.
  [[nodiscard]] XmlNodeData* addChild(std::string_view childName, bool childIsDeclaration);
  [[nodiscard]] bool addText(XmlText text);
  [[nodiscard]] bool addSection(std::string_view content, const char* opener, const char* closer);
  [[nodiscard]] bool addAttribute(std::string_view attributeName, XmlText value);
};

// A handle. Without a record it is the empty node: every lookup on it gives the empty node again,
// and nothing is shared between empty nodes.
class XmlNode {
 public:
  constexpr XmlNode() = default;
  explicit XmlNode(XmlNodeData* data) : data_(data) { retain(); }
  XmlNode(const XmlNode& other) : data_(other.data_) { retain(); }
  XmlNode(XmlNode&& other) noexcept : data_(std::exchange(other.data_, nullptr)) {}
  XmlNode& operator=(XmlNode other) noexcept {
    std::swap(data_, other.data_);
    return *this;
  }
  ~XmlNode() { release(); }

  bool isEmpty() const { return data_ == nullptr; }
  // The first child at or after a position whose name equals this one without regard to case.
  XmlNode childByName(std::string_view name, int index = 0) const;
  // The i-th text segment; null when there is none.
  const char* text(int i) const;
  // Null for the empty node.
  const XmlNodeData* data() const { return data_; }

 private:
  void retain() const {
    if (data_ != nullptr) ++data_->refCount;
  }
  void release();

  XmlNodeData* data_ = nullptr;
};

}  // namespace lumora
