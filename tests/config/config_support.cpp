#include "config/config_support.h"

namespace lumora::test {
namespace {

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
