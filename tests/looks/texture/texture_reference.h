// The texture looks written plainly, one pixel at a time.
#pragma once

#include <string>

#include "support/reference_look.h"

namespace lumora::test {

// What a run uses beside the picture: the tuning block or null, and the strength.
struct ReferenceTuning {
  const std::uint8_t* block;
  int ratio;
};

struct TextureLook {
  const char* name;
  const Look& (*look)();
  ReferenceConversion conversion;
  PixelFunction (*pixelFunction)(const ReferenceTuning& tuning);
};

extern const TextureLook kLaodianyingLook, kLianghongLook, kYunduanLook, kEarlybirdLook, kXpro2Look,
    kHudsonLook, kMyfairLook, kLofiLook;
inline const TextureLook* const kTextureLooks[] = {
    &kLaodianyingLook, &kLianghongLook, &kYunduanLook, &kEarlybirdLook,
    &kXpro2Look,       &kHudsonLook,    &kMyfairLook,  &kLofiLook};

// Runs the look's plain form on the picture.
void runReference(const TextureLook& look, const Picture& picture, const std::uint8_t* texture,
                  const ReferenceTuning& tuning);

}  // namespace lumora::test
