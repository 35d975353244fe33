// Parses documents into element trees. The grammar is small and lenient; nothing in it recurses,
// so the depth of a document is bounded by memory alone, and every step takes time proportional to
// the bytes it reads.
#pragma once

#include <cstdint>

#include "config/encoding.h"
#include "config/xml_node.h"
#include "config/xml_status.h"

namespace lumora {

// The result is the outermost element when it is all there is (a document without a declaration),
// otherwise a nameless node above declaration, elements and whatever else stands beside them. A
// status that discards the document gives the empty node.
XmlNode parseText(const char* text, XmlEncoding encoding, XmlOutcome& outcome);

// Longer files are not read: the tree of a hostile document takes some seventy times the document's
// size. Real documents have a few thousand bytes.
inline constexpr std::int64_t kLargestDocument = 16 << 20;

// Guesses the file's encoding, for later documents too, and parses it. A file below 200 bytes is
// never parsed.
XmlNode parseFile(const char* fileName, XmlOutcome& outcome);

}  // namespace lumora
