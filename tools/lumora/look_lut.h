// Looks as tables of colours.
#pragma once

#include <cstdint>
#include <vector>

#include "look_settings.h"
#include "lut/lut.h"
#include "resources.h"

namespace lumora::tool {

// Why a look is no function of colour alone; null for one that is.
const char* reasonAgainstLut(const Mode& mode);

// What a look makes of every colour that eight bits a channel can say: 64 MB.
class LookColours {
 public:
  LookColours(const ResourceSettings& resources, const LookSettings& look);

  // A table over the whole range of colours. Its entries lie between colours of eight bits, and are
  // interpolated between theirs.
  lut::Lut table(int size) const;

 private:
  lut::Triple between(const lut::Triple& levels) const;

  std::vector<std::uint8_t> pixels_;  // RGBA, red running fastest
};

}  // namespace lumora::tool
