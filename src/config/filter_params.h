// The tuning values of filter.xml.
#pragma once

#include <cstdint>

#include "config/tuning_blocks.h"
#include "config/xml_status.h"
#include "platform/status.h"

namespace lumora {

// Whether a block's values are in use, and otherwise the first reason why not.
enum class BlockState : std::uint8_t {
  kInUse,
  kMissingKey,        // no such element, or one without text
  kTooFewNumbers,     // number: how many the key holds
  kFallingCurve,      // number: the first knot (0..16) below the one before it
  kScalarOutOfRange,  // number: the value of the block's rule
};

struct BlockReport {
  BlockState state;
  int param;  // N of the curve key param<N> that is wrong
  int number;
};

struct TuningReport {
  XmlOutcome document;
  bool hasConfig;  // there is an element /Config to look for keys in
  BlockReport blocks[kTuningBlockCount];
};

// Fills the 4096 bytes of params. A document that is missing or malformed is none of its failures:
// every key is then missing, so every flag is 1 except LAODIANYING's (scalars have defaults).
// kBadResource, logged: the file's name is too long, or no memory at all; every byte is 1.
Status readFilterParams(std::uint8_t* params, const char* fileName);

// The same, and tells what became of the document and of each block (nothing on failure).
Status readFilterParams(std::uint8_t* params, const char* fileName, TuningReport& report);

}  // namespace lumora
