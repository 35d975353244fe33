#include "config/xml_parser.h"

#include <cstring>

#include "config/xml_entities.h"
#include "config/xml_scanner.h"

namespace lumora {
namespace {

class Parser {
 public:
  Parser(std::string_view text, XmlEncoding encoding)
      : text_(text), lengths_(characterLengths(encoding)), scanner_(text, lengths_) {}

  XmlNode parse(XmlOutcome& outcome);

 private:
  XmlStatus parseContent(const XmlNodeData* top);
  XmlStatus readText();
  XmlStatus readTag();
  XmlStatus readSection(const XmlSectionKind& kind);
  XmlStatus readStartTag(const char* tag, XmlTagKind kind);
  XmlStatus readInsideStartTag(XmlTagKind kind);
  XmlStatus readAttribute(XmlTagKind kind);
  XmlStatus readEndTag(const char* tag);
  XmlStatus closeElement(std::string_view name, const char* tag);

  bool nextPiece(std::string_view& piece);
  const char* placeInText(const char* start, std::size_t offset);

  // Ends the parse with a status found at that place.
  XmlStatus stop(XmlStatus status, const char* place) {
    stoppedAt_ = place;
    return status;
  }
  XmlStatus stopHere(XmlStatus status) { return stop(status, scanner_.position()); }
  XmlStatus unlessExhausted(bool added) {
    return added ? XmlStatus::kNoError : stopHere(XmlStatus::kNoText);
  }

  std::string_view text_;
  const CharacterLengths& lengths_;
  XmlScanner scanner_;
  XmlNodeData* current_ = nullptr;  // the innermost open element, or the top node
  const char* stoppedAt_ = nullptr;
};

bool isLoneElement(const XmlNodeData& top) {
  return top.children.count() == 1 && top.texts.count() == 0 && top.sections.count() == 0 &&
         top.attributes.count() == 0;
}

XmlNode Parser::parse(XmlOutcome& outcome) {
  XmlNodeData* const top = XmlNodeData::create();
  if (top == nullptr) {
    outcome = {XmlStatus::kNoText, 0, 0};
    return {};
  }
  const XmlNode tree(top);
  current_ = top;
  const XmlStatus status = parseContent(top);
  const XmlPosition position = positionOf(stoppedAt_, text_, lengths_);
  outcome = {status, position.line, position.column};
  if (!keepsDocument(status)) return {};
  return isLoneElement(*top) ? XmlNode(top->children[0]) : tree;
}

XmlStatus Parser::parseContent(const XmlNodeData* top) {
  while (!scanner_.atEnd()) {
    const XmlStatus status = scanner_.atTag() ? readTag() : readText();
    if (status != XmlStatus::kNoError) return status;
  }
  if (current_ != top) return stopHere(XmlStatus::kMissingEndTag);
  return stopHere(top->children.count() == 0 ? XmlStatus::kNoElement : XmlStatus::kNoError);
}

// Text goes on behind a comment: the pieces before and behind it are joined, the comment is
// dropped, and only then are entities decoded. A comment with nothing but blanks behind it stays
// where it is, for the next token.
XmlStatus Parser::readText() {
  const char* const start = scanner_.position();
  std::string_view piece = scanner_.readText();
  if (piece.empty()) return XmlStatus::kNoError;

  XmlArray<char> joined;
  do {
    if (!joined.reserve(piece.size() + 1)) return stopHere(XmlStatus::kNoText);
    for (const char c : piece) joined.add(c);
  } while (nextPiece(piece));

  const auto length = static_cast<std::size_t>(joined.count());
  joined.add('\0');
  XmlText text(joined.release());
  const DecodedText decoded = decodeEntities(text.get(), length, lengths_);
  if (decoded.status != XmlStatus::kNoError) {
    return stop(decoded.status, placeInText(start, decoded.faultAt));
  }
  return unlessExhausted(current_->addText(std::move(text)));
}

// Steps over a comment and the text behind it, or over nothing.
bool Parser::nextPiece(std::string_view& piece) {
  const char* const comment = scanner_.position();
  XmlScanner::Section dropped;
  if (!scanner_.startsWith(kCommentSection.opener)) return false;
  if (scanner_.readSection(kCommentSection, dropped)) {
    piece = scanner_.readText();
    if (!piece.empty()) return true;
  }
  scanner_.moveTo(comment);
  return false;
}

// Where a character of the joined text that begins at `start` stands in the document.
const char* Parser::placeInText(const char* start, std::size_t offset) {
  scanner_.moveTo(start);
  std::string_view piece = scanner_.readText();
  while (offset >= piece.size()) {
    offset -= piece.size();
    if (!nextPiece(piece)) break;
  }
  return piece.data() + offset;
}

XmlStatus Parser::readTag() {
  if (const XmlSectionKind* kind = scanner_.sectionHere()) return readSection(*kind);
  const char* const tag = scanner_.position();
  if (scanner_.skip("</")) return readEndTag(tag);
  if (scanner_.skip("<?")) return readStartTag(tag, XmlTagKind::kDeclaration);
  scanner_.skip("<");
  return readStartTag(tag, XmlTagKind::kStart);
}

XmlStatus Parser::readSection(const XmlSectionKind& kind) {
  XmlScanner::Section section;
  if (!scanner_.readSection(kind, section)) return stopHere(XmlStatus::kUnclosedSection);
  return unlessExhausted(current_->addSection(section.content, kind.opener, section.closer));
}

XmlStatus Parser::readStartTag(const char* tag, XmlTagKind kind) {
  if (scanner_.atEnd()) return stop(XmlStatus::kMissingTagName, tag);
  scanner_.skipBlanks();
  if (scanner_.atEnd()) return stopHere(XmlStatus::kMissingEndTag);
  const std::string_view name = scanner_.readName(kind);
  if (name.empty()) return stop(XmlStatus::kMissingTagName, tag);
  XmlNodeData* const child = current_->addChild(name, kind == XmlTagKind::kDeclaration);
  if (child == nullptr) return stopHere(XmlStatus::kNoText);
  current_ = child;
  return readInsideStartTag(kind);
}

XmlStatus Parser::readInsideStartTag(XmlTagKind kind) {
  for (;;) {
    scanner_.skipBlanks();
    if (scanner_.atEnd()) return stopHere(XmlStatus::kMissingEndTag);
    if (scanner_.skip(">")) return XmlStatus::kNoError;
    if (scanner_.skip("/>") || (kind == XmlTagKind::kDeclaration && scanner_.skip("?>"))) {
      current_ = current_->parent;
      return XmlStatus::kNoError;
    }
    const XmlStatus status = readAttribute(kind);
    if (status != XmlStatus::kNoError) return status;
  }
}

XmlStatus Parser::readAttribute(XmlTagKind kind) {
  const std::string_view name = scanner_.readName(kind);
  if (name.empty()) return stopHere(XmlStatus::kUnexpectedToken);
  scanner_.skipBlanks();
  if (scanner_.atEnd()) return stopHere(XmlStatus::kMissingEndTag);
  if (!scanner_.skip("=")) return stopHere(XmlStatus::kUnexpectedToken);
  scanner_.skipBlanks();
  if (scanner_.atEnd()) return stopHere(XmlStatus::kMissingEndTag);
  std::string_view quoted;
  if (!scanner_.readQuoted(quoted)) return stopHere(XmlStatus::kUnexpectedToken);

  XmlText value = XmlText::copyOf(quoted);
  if (!value) return stopHere(XmlStatus::kNoText);
  const DecodedText decoded = decodeEntities(value.get(), quoted.size(), lengths_);
  if (decoded.status != XmlStatus::kNoError) {
    return stop(decoded.status, quoted.data() + decoded.faultAt);
  }
  return unlessExhausted(current_->addAttribute(name, std::move(value)));
}

XmlStatus Parser::readEndTag(const char* tag) {
  if (scanner_.atEnd()) return stop(XmlStatus::kMissingEndTagName, tag);
  scanner_.skipBlanks();
  if (scanner_.atEnd()) return stopHere(XmlStatus::kMissingEndTag);
  const std::string_view name = scanner_.readName(XmlTagKind::kEnd);
  if (name.empty()) return stop(XmlStatus::kMissingEndTagName, tag);
  scanner_.skipBlanks();
  scanner_.skip("/");
  scanner_.skipBlanks();
  if (scanner_.atEnd()) return stopHere(XmlStatus::kMissingEndTag);
  if (!scanner_.skip(">")) return stopHere(XmlStatus::kUnexpectedToken);
  return closeElement(name, tag);
}

// Closes the nearest open element of that name and everything still open inside it. The walk is
// paid for by what it closes; one that finds nothing ends the parse. So all walks together pass
// every element at most twice.
XmlStatus Parser::closeElement(std::string_view name, const char* tag) {
  for (XmlNodeData* open = current_; open->parent != nullptr; open = open->parent) {
    if (equalsIgnoringCase(open->name.get(), name)) {
      current_ = open->parent;
      return XmlStatus::kNoError;
    }
  }
  return stop(XmlStatus::kUnmatchedEndTag, tag);
}

}  // namespace

XmlNode parseText(const char* text, XmlEncoding encoding, XmlOutcome& outcome) {
  outcome = {};
  if (text == nullptr) return {};
  return Parser(std::string_view(text, std::strlen(text)), encoding).parse(outcome);
}

}  // namespace lumora
