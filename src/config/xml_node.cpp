#include "config/xml_node.h"

#include <cstdlib>
#include <new>

#include "config/characters.h"

namespace lumora {
namespace {

constexpr std::uint32_t orderEntry(int index, XmlItemKind kind) {
  return static_cast<std::uint32_t>(index) * 4 + static_cast<std::uint32_t>(kind);
}

// Adds an item to its own array and to the document order, or to neither.
template <class T>
bool addItem(XmlNodeData& node, XmlArray<T>& items, const T& item, XmlItemKind kind) {
  if (!items.reserve(1) || !node.order.reserve(1)) return false;
  node.order.add(orderEntry(items.count(), kind));
  items.add(item);
  return true;
}

void destroy(XmlNodeData* node) {
  node->~XmlNodeData();
  std::free(node);
}

// Gives up one handle to the node. When it was the last one, the node goes with everything below
// it that has no handle of its own. Depth costs no stack: the way back up are the parent pointers.
void releaseNode(XmlNodeData* node) {
  if (--node->refCount > 0) return;
  while (node != nullptr) {
    if (node->children.count() == 0) {
      XmlNodeData* const parent = node->parent;
      destroy(node);
      node = parent;
      continue;
    }
    XmlNodeData* const child = node->children.removeLast();
    if (--child->refCount == 0) {
      node = child;
    } else {
      child->parent = nullptr;
    }
  }
}

}  // namespace

XmlNodeData::~XmlNodeData() {
  for (char* text : texts) std::free(text);
  for (const XmlSection& section : sections) std::free(section.content);
  for (const XmlAttribute& attribute : attributes) {
    std::free(attribute.name);
    std::free(attribute.value);
  }
}

XmlNodeData* XmlNodeData::create() {
  void* const block = std::malloc(sizeof(XmlNodeData));
  return block != nullptr ? new (block) XmlNodeData : nullptr;
}

XmlNodeData* XmlNodeData::addChild(std::string_view childName, bool childIsDeclaration) {
  XmlNodeData* const child = create();
  if (child == nullptr) return nullptr;
  child->name = XmlText::copyOf(childName);
  if (!child->name || !addItem(*this, children, child, XmlItemKind::kChild)) {
    destroy(child);
    return nullptr;
  }
  child->isDeclaration = childIsDeclaration;
  child->parent = this;
  child->refCount = 1;
  return child;
}

bool XmlNodeData::addText(XmlText text) {
  if (!addItem(*this, texts, text.get(), XmlItemKind::kText)) return false;
  text.release();
  return true;
}

bool XmlNodeData::addSection(std::string_view content, const char* opener, const char* closer) {
  XmlText copy = XmlText::copyOf(content);
  if (!copy) return false;
  const XmlSection section = {copy.get(), opener, closer};
  if (!addItem(*this, sections, section, XmlItemKind::kSection)) return false;
  copy.release();
  return true;
}

bool XmlNodeData::addAttribute(std::string_view attributeName, XmlText value) {
  XmlText nameCopy = XmlText::copyOf(attributeName);
  if (!nameCopy) return false;
  const XmlAttribute attribute = {nameCopy.get(), value.get()};
  if (!addItem(*this, attributes, attribute, XmlItemKind::kAttribute)) return false;
  nameCopy.release();
  value.release();
  return true;
}

XmlNode XmlNode::childByName(std::string_view name, int index) const {
  if (isEmpty() || index < 0) return {};
  for (int i = index; i < data_->children.count(); ++i) {
    XmlNodeData* const child = data_->children[i];
    if (equalsIgnoringCase(child->name.get(), name)) return XmlNode(child);
  }
  return {};
}

const char* XmlNode::text(int i) const {
  if (isEmpty() || i < 0 || i >= data_->texts.count()) return nullptr;
  return data_->texts[i];
}

void XmlNode::release() {
  if (data_ != nullptr) releaseNode(data_);
}

}  // namespace lumora
