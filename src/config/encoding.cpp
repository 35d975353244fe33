#include "config/encoding.h"

#include <algorithm>
#include <atomic>
#include <string_view>

#include "config/characters.h"

namespace lumora {
namespace {

struct Range {
  int first;
  int last;
  std::uint8_t length;
};

// Every byte outside the ranges is a character of its own.
template <int kCount>
constexpr CharacterLengths lengthsOf(const Range (&ranges)[kCount]) {
  CharacterLengths lengths{};
  for (int byte = 1; byte < 256; ++byte) lengths.of[byte] = 1;
  for (const Range& range : ranges) {
    for (int byte = range.first; byte <= range.last; ++byte) lengths.of[byte] = range.length;
  }
  return lengths;
}

constexpr CharacterLengths kUtf8Lengths =
    lengthsOf({{0xC2, 0xDF, 2}, {0xE0, 0xEF, 3}, {0xF0, 0xF4, 4}});
constexpr CharacterLengths kSingleByteLengths = lengthsOf({{0x01, 0xFF, 1}});
constexpr CharacterLengths kShiftJisLengths = lengthsOf({{0x81, 0x9F, 2}, {0xE0, 0xEF, 2}});
constexpr CharacterLengths kGb2312Lengths = lengthsOf({{0xA1, 0xF7, 2}});
constexpr CharacterLengths kBig5Lengths = lengthsOf({{0x81, 0xFE, 2}});

std::atomic<XmlEncoding> lastGuess{XmlEncoding::kUtf8};

constexpr std::size_t kShortestGuess = 25;
constexpr std::size_t kDeclarationBytes = 200;
constexpr std::size_t kWideWords = 256;

bool isWideOrderMark(const std::uint8_t* bytes) {
  return (bytes[0] == 0xFF && bytes[1] == 0xFE) || (bytes[0] == 0xFE && bytes[1] == 0xFF);
}

// Text of two or four bytes a character has many 32-bit words that hold a small number or nothing.
// Words are read with their low byte first on every processor.
bool looksWide(const std::uint8_t* bytes, std::size_t count) {
  if (count % 2 != 0) return false;
  if (isWideOrderMark(bytes)) return true;
  const std::size_t words = std::min(count / 4, kWideWords);
  std::size_t smallWords = 0;
  for (std::size_t i = 0; i < words; ++i) {
    const std::uint8_t* word = bytes + 4 * i;
    if ((word[1] | word[2] | word[3]) != 0) continue;
    if (word[0] == 0) return true;
    ++smallWords;
  }
  return smallWords > words / 2;
}

bool isUtf8(const std::uint8_t* bytes, std::size_t count) {
  std::size_t i = 0;
  while (i < count && bytes[i] != 0) {
    const std::size_t next = i + kUtf8Lengths.of[bytes[i]];
    for (std::size_t k = i + 1; k < std::min(next, count); ++k) {
      if ((bytes[k] & 0xC0) != 0x80) return false;
    }
    i = next;
  }
  return true;
}

std::string_view skipBlanks(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  return text;
}

// Finds what follows `encoding = "`. False: there is no such thing in the text.
bool findDeclaredEncoding(std::string_view text, std::string_view& name) {
  constexpr std::string_view kKeyword = "encoding";
  const std::size_t keyword = text.find(kKeyword);
  if (keyword == std::string_view::npos) return false;
  text.remove_prefix(keyword + kKeyword.size());
  text = skipBlanks(text);
  if (text.empty() || text.front() != '=') return false;
  text.remove_prefix(1);
  text = skipBlanks(text);
  if (text.empty() || !isQuote(text.front())) return false;
  text.remove_prefix(1);
  name = skipBlanks(text);
  return true;
}

struct EncodingName {
  std::string_view prefix;
  XmlEncoding encoding;
};

constexpr EncodingName kEncodingNames[] = {
    {"utf-8", XmlEncoding::kUtf8},        {"utf8", XmlEncoding::kUtf8},
    {"shiftjis", XmlEncoding::kShiftJis}, {"shift-jis", XmlEncoding::kShiftJis},
    {"sjis", XmlEncoding::kShiftJis},     {"gb2312", XmlEncoding::kGb2312},
    {"big5", XmlEncoding::kBig5},         {"gbk", XmlEncoding::kGbk},
};

XmlEncoding encodingNamed(std::string_view name) {
  for (const EncodingName& known : kEncodingNames) {
    if (startsWithIgnoringCase(name, known.prefix)) return known.encoding;
  }
  return XmlEncoding::kSingleByte;
}

XmlEncoding guessFromDeclaration(std::string_view text, bool validUtf8) {
  std::string_view name;
  if (!findDeclaredEncoding(text, name)) {
    return validUtf8 ? XmlEncoding::kUtf8 : XmlEncoding::kSingleByte;
  }
  const XmlEncoding named = encodingNamed(name);
  // A document that says UTF-8 and is not: nothing is known about it.
  const bool contradicted = named == XmlEncoding::kUtf8 && !validUtf8;
  return contradicted ? XmlEncoding::kUndetermined : named;
}

}  // namespace

const CharacterLengths& characterLengths(XmlEncoding encoding) {
  switch (encoding) {
    case XmlEncoding::kSingleByte: return kSingleByteLengths;
    case XmlEncoding::kShiftJis: return kShiftJisLengths;
    case XmlEncoding::kGb2312: return kGb2312Lengths;
    case XmlEncoding::kBig5:
    case XmlEncoding::kGbk: return kBig5Lengths;
    default: return kUtf8Lengths;
  }
}

XmlEncoding guessEncoding(const std::uint8_t* bytes, std::size_t count) {
  if (count < kShortestGuess) return XmlEncoding::kUndetermined;
  if (looksWide(bytes, count)) return XmlEncoding::kUndetermined;
  if (bytes[0] == 0xEF && bytes[1] == 0xBB && bytes[2] == 0xBF) return XmlEncoding::kUtf8;

  const char* const text = reinterpret_cast<const char*>(bytes);
  const char* const end = std::find(text, text + std::min(count, kDeclarationBytes), '\0');
  return guessFromDeclaration({text, static_cast<std::size_t>(end - text)}, isUtf8(bytes, count));
}

XmlEncoding lastGuessedEncoding() { return lastGuess.load(std::memory_order_relaxed); }

void rememberGuessedEncoding(XmlEncoding encoding) {
  lastGuess.store(encoding, std::memory_order_relaxed);
}

}  // namespace lumora
