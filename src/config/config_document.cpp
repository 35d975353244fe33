#include "config/config_document.h"

#include <cstring>
#include <string_view>

#include "config/numbers.h"
#include "config/xml_parser.h"

namespace lumora {
namespace {

constexpr const char* kEmptyDocument =
    "<?xml version=\"1.0\" encoding=\"GB2312\"?><Config></Config>";
constexpr std::size_t kLongestLookupPath = 254;

}  // namespace

bool ConfigDocument::load(const char* fileName) {
  const std::size_t length = fileName != nullptr ? strnlen(fileName, kPathBytes) : kPathBytes;
  if (length == kPathBytes) return false;
  if (std::strcmp(fileName, loadedPath_) != 0) {
    root_ = parseFile(fileName, fileOutcome_);
    if (root_.isEmpty()) {
      XmlOutcome ignored;
      root_ = parseText(kEmptyDocument, lastGuessedEncoding(), ignored);
    }
    std::memcpy(loadedPath_, fileName, length + 1);
  }
  return !root_.isEmpty();
}

XmlNode ConfigDocument::findByPath(const char* path) const {
  const std::size_t length = path != nullptr ? strnlen(path, kLongestLookupPath + 1) : 0;
  if (length == 0 || length > kLongestLookupPath || path[0] != '/') return {};
  XmlNode node = root_;
  const char* const end = path + length;
  for (const char* slash = path; slash != end && !node.isEmpty();) {
    const char* const name = slash + 1;
    slash = name;
    while (slash != end && *slash != '/') ++slash;
    node = node.childByName(std::string_view(name, static_cast<std::size_t>(slash - name)));
  }
  return node;
}

std::int32_t ConfigDocument::readInt(const char* path, std::int32_t defaultValue) const {
  const XmlNode node = findByPath(path);
  const char* const text = node.text(0);
  if (text != nullptr) readLeadingInt(text, defaultValue);
  return defaultValue;
}

template <class T>
bool ConfigDocument::readList(const char* path, T* out, int count, int* numbersRead) const {
  const XmlNode node = findByPath(path);
  const char* const text = node.text(0);
  const int read = text != nullptr ? readNumbers(text, out, count) : 0;
  if (numbersRead != nullptr) *numbersRead = read;
  return text != nullptr;
}

bool ConfigDocument::readUInt32List(const char* path, std::uint32_t* out, int count,
                                    int* numbersRead) const {
  return readList(path, out, count, numbersRead);
}

bool ConfigDocument::readInt32List(const char* path, std::int32_t* out, int count,
                                   int* numbersRead) const {
  return readList(path, out, count, numbersRead);
}

bool ConfigDocument::readInt16List(const char* path, std::int16_t* out, int count,
                                   int* numbersRead) const {
  return readList(path, out, count, numbersRead);
}

}  // namespace lumora
