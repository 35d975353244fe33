// Every look written plainly, one pixel at a time.
#pragma once

#include <span>

#include "looks/look.h"
#include "looks/reference_run.h"

namespace lumora::test {

// What a run uses beside the picture: the tuning block or null, and the strength.
struct ReferenceTuning {
  const std::uint8_t* block;
  int ratio;
};

struct ReferenceLook {
  const char* name;
  const Look& (*look)();
  PixelFunction (*pixelFunction)(const ReferenceTuning& tuning);
  ReferenceConversion conversion = {};
  bool isMixed = true;  // with the picture as it was, below the full strength
};

std::span<const ReferenceLook> referenceLooks();

// Runs the look's plain form on the picture.
void runReference(const ReferenceLook& look, const Picture& picture, const std::uint8_t* texture,
                  const ReferenceTuning& tuning);

}  // namespace lumora::test
