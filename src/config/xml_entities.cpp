#include "config/xml_entities.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "config/characters.h"

namespace lumora {
namespace {

struct NamedEntity {
  std::string_view text;
  char character;
};

constexpr NamedEntity kNamedEntities[] = {
    {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''},
};

constexpr int kLargestCode = 255;

struct Entity {
  XmlStatus status;
  char character;
  std::size_t length;
};

constexpr Entity kUnknown = {XmlStatus::kUnknownEntity, 0, 0};

// -1 for what is no digit of the base.
int digitValue(char c, int base) {
  if (c >= '0' && c <= '9') return c - '0';
  const char letter = lowerCase(c);
  return base == 16 && letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

// No digits at all give the zero byte.
Entity readNumericEntity(std::string_view text) {
  std::size_t i = 2;  // behind "&#"
  int base = 10;
  if (i < text.size() && lowerCase(text[i]) == 'x') {
    base = 16;
    ++i;
  }
  int code = 0;
  for (; i < text.size() && text[i] != ';'; ++i) {
    const int digit = digitValue(text[i], base);
    if (digit < 0) return kUnknown;
    // One above the largest is as good as any larger code, and never overflows.
    code = std::min(code * base + digit, kLargestCode + 1);
  }
  if (i == text.size()) return kUnknown;
  if (code > kLargestCode) return {XmlStatus::kCharacterTooLarge, 0, 0};
  return {XmlStatus::kNoError, static_cast<char>(code), i + 1};
}

Entity readEntity(std::string_view text) {
  if (startsWith(text, "&#")) return readNumericEntity(text);
  for (const NamedEntity& entity : kNamedEntities) {
    if (startsWithIgnoringCase(text, entity.text)) {
      return {XmlStatus::kNoError, entity.character, entity.text.size()};
    }
  }
  return kUnknown;
}

}  // namespace

DecodedText decodeEntities(char* text, std::size_t length, const CharacterLengths& lengths) {
  std::size_t from = 0;
  std::size_t to = 0;
  while (from < length) {
    if (text[from] == '&') {
      const Entity entity = readEntity(std::string_view(text + from, length - from));
      if (entity.status != XmlStatus::kNoError) return {entity.status, from};
      text[to++] = entity.character;
      from += entity.length;
    } else {
      const std::size_t bytes = std::min(lengths[text[from]], length - from);
      std::memmove(text + to, text + from, bytes);
      from += bytes;
      to += bytes;
    }
  }
  text[to] = '\0';
  return {XmlStatus::kNoError, 0};
}

}  // namespace lumora
