// The one table of modes that help, errors, listings and completions are made from.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "lumora/filters.h"

namespace lumora::tool {

// What the strength 0..32 does.
enum class StrengthUse {
  kBlendAndCurves,  // below 16 blended with the original, above 16 stronger curves
  kBlend,           // below 16 blended with the original, 16..32 alike
  kOwn,             // the whole range steers the effect itself
  kBlurLevel,       // how wide the blur is, 0 for none
  kUnused
};

struct Mode {
  unsigned number;
  const char* name;  // as typed and listed: lower case, words joined by "-"
  const char* kind;
  const char* summary;
  const char* texture;  // what it takes from the texture pack; null for nothing
  bool rgbaOnly;
  StrengthUse strength;
};

std::span<const Mode> modes();
std::vector<std::string> modeNames();

// By name (any case, "-" and "_" do not matter) or number. Throws a UsageError that names the
// nearest.
const Mode& findMode(const std::string& nameOrNumber);

const char* describe(StrengthUse use);

}  // namespace lumora::tool
