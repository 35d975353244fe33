// How a parse ended.
#pragma once

#include <cstdint>

namespace lumora {

enum class XmlStatus : std::uint8_t {
  kNoError = 0,
  kMissingEndTag = 1,
  kNoElement = 2,
  kEmptyFile = 3,  // or one that cannot be read
  kMissingTagName = 4,
  kMissingEndTagName = 5,
  kUnmatchedEndTag = 6,
  kUnclosedSection = 7,
  kUnexpectedToken = 8,
  kNoText = 9,  // or memory exhausted
  kFileNotFound = 10,
  kUnknownEntity = 12,
  kCharacterTooLarge = 13,
};

// From here on a document is discarded as a whole.
constexpr bool keepsDocument(XmlStatus status) { return status < XmlStatus::kEmptyFile; }

struct XmlOutcome {
  XmlStatus status = XmlStatus::kNoText;
  // Where parsing stopped, counted from 1, columns in characters; 0 when it never began.
  std::int64_t line = 0;
  std::int64_t column = 0;
};

}  // namespace lumora
