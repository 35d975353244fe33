#include "config/xml_memory.h"

#include <cstring>

namespace lumora {

XmlText XmlText::ofSize(std::size_t bytes) {
  return XmlText(static_cast<char*>(std::malloc(bytes)));
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
