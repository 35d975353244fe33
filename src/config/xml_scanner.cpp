#include "config/xml_scanner.h"

#include <algorithm>

namespace lumora {
namespace {

constexpr XmlSectionKind kSectionKinds[] = {
    {"<![CDATA[", "]]>", nullptr},
    {"<!DOCTYPE", ">", "]>"},
    kCommentSection,
    {"<PRE>", "</PRE>", nullptr},
};

// The character at `at`, cut off at the end of the text. A zero byte would have no length, but
// ends the text.
std::size_t characterBytes(const char* at, const char* end, const CharacterLengths& lengths) {
  return std::min(lengths[*at], static_cast<std::size_t>(end - at));
}

}  // namespace

void XmlScanner::advance() { at_ += characterBytes(at_, end_, lengths_); }

bool XmlScanner::skip(std::string_view literal) {
  if (!startsWith(literal)) return false;
  at_ += literal.size();
  return true;
}

void XmlScanner::skipBlanks() {
  while (!atEnd() && isBlank(*at_)) ++at_;
}

std::string_view XmlScanner::readText() {
  skipBlanks();
  const char* const start = at_;
  const char* lastEnd = at_;
  while (!atEnd() && *at_ != '<') {
    const bool blank = isBlank(*at_);
    advance();
    if (!blank) lastEnd = at_;
  }
  return {start, static_cast<std::size_t>(lastEnd - start)};
}

bool XmlScanner::atEndOfName(XmlTagKind tag) const {
  const char c = *at_;
  if (isBlank(c) || isQuote(c) || c == '<' || c == '>' || c == '=') return true;
  // "/" and "?" belong to a name unless they begin the end of this tag.
  const char next = at_ + 1 < end_ ? at_[1] : '\0';
  if (c == '/') return next == '>' || (tag == XmlTagKind::kEnd && isBlank(next));
  return c == '?' && next == '>' && tag == XmlTagKind::kDeclaration;
}

std::string_view XmlScanner::readName(XmlTagKind tag) {
  const char* const start = at_;
  while (!atEnd() && !atEndOfName(tag)) advance();
  return from(start);
}

bool XmlScanner::readQuoted(std::string_view& value) {
  if (atEnd() || !isQuote(*at_)) return false;
  const char* const opening = at_;
  advance();
  while (!atEnd() && *at_ != *opening) advance();
  if (atEnd()) {
    at_ = opening;
    return false;
  }
  value = from(opening + 1);
  advance();
  return true;
}

const XmlSectionKind* XmlScanner::sectionHere() const {
  for (const XmlSectionKind& kind : kSectionKinds) {
    if (startsWith(kind.opener)) return &kind;
  }
  return nullptr;
}

// Unlike everything else, closers are searched byte by byte.
bool XmlScanner::readSection(const XmlSectionKind& kind, Section& section) {
  std::string_view content = rest();
  content.remove_prefix(std::string_view(kind.opener).size());
  const char* closer = kind.closer;
  if (kind.subsetCloser != nullptr) {
    const std::size_t bracket = content.find_first_of("<>");
    if (bracket == std::string_view::npos || content[bracket] == '<') closer = kind.subsetCloser;
  }
  const std::size_t length = content.find(closer);
  if (length == std::string_view::npos) return false;
  section = {std::string_view(content.data(), length), closer};
  at_ = content.data() + length + std::string_view(closer).size();
  return true;
}

XmlPosition positionOf(const char* place, std::string_view text, const CharacterLengths& lengths) {
  XmlPosition position = {1, 1};
  const char* const end = text.data() + text.size();
  for (const char* at = text.data(); at < place; at += characterBytes(at, end, lengths)) {
    if (*at == '\n') {
      ++position.line;
      position.column = 1;
    } else {
      ++position.column;
    }
  }
  return position;
}

}  // namespace lumora
