// Character entities.
#pragma once

#include <cstddef>

#include "config/encoding.h"
#include "config/xml_status.h"

namespace lumora {

struct DecodedText {
  XmlStatus status;
  std::size_t faultAt;  // offset of the entity that is wrong
};

// Decodes a terminated text of `length` bytes in place; what comes out is never longer. An entity
// may give a zero byte: what follows it stays in the block, behind the text's end.
DecodedText decodeEntities(char* text, std::size_t length, const CharacterLengths& lengths);

}  // namespace lumora
