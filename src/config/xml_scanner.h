// Reads a document's tokens. It always moves on by whole characters, so that the trail byte of a
// multi-byte character is never taken for "<", "&", a quote or a blank.
#pragma once

#include <string_view>

#include "config/characters.h"
#include "config/encoding.h"

namespace lumora {

// A part of the document that is kept as it stands.
struct XmlSectionKind {
  const char* opener;
  const char* closer;
  const char* subsetCloser;  // in place of closer when a "<" comes before it; null for none
};

inline constexpr XmlSectionKind kCommentSection = {"<!--", "-->", nullptr};

enum class XmlTagKind { kStart, kDeclaration, kEnd };

class XmlScanner {
 public:
  XmlScanner(std::string_view text, const CharacterLengths& lengths)
      : at_(text.data()), end_(text.data() + text.size()), lengths_(lengths) {}

  bool atEnd() const { return at_ == end_; }
  const char* position() const { return at_; }
  void moveTo(const char* position) { at_ = position; }
  bool atTag() const { return !atEnd() && *at_ == '<'; }

  bool startsWith(std::string_view literal) const { return lumora::startsWith(rest(), literal); }
  // Steps over the literal if it stands here.
  bool skip(std::string_view literal);
  void skipBlanks();

  // The text up to the next "<" without the blanks around it.
  std::string_view readText();
  // A name inside a tag; empty when something else stands here.
  std::string_view readName(XmlTagKind tag);
  // A quoted string without its quotes. False, and nothing read: no quote here, or one without its
  // partner.
  [[nodiscard]] bool readQuoted(std::string_view& value);

  // The kind of the section that begins here, or null.
  const XmlSectionKind* sectionHere() const;
  struct Section {
    std::string_view content;
    const char* closer;
  };
  // Reads one of that kind. False, and nothing read: its closer is missing.
  [[nodiscard]] bool readSection(const XmlSectionKind& kind, Section& section);

 private:
  std::string_view rest() const { return {at_, static_cast<std::size_t>(end_ - at_)}; }
  std::string_view from(const char* start) const {
    return {start, static_cast<std::size_t>(at_ - start)};
  }
  void advance();
  bool atEndOfName(XmlTagKind tag) const;

  const char* at_;
  const char* end_;
  const CharacterLengths& lengths_;
};

struct XmlPosition {
  std::int64_t line;
  std::int64_t column;
};

// Line and column of a place in the text, both counted from 1, columns in characters.
XmlPosition positionOf(const char* place, std::string_view text, const CharacterLengths& lengths);

}  // namespace lumora
