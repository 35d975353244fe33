#include "example_settings.h"

#include <algorithm>

namespace lumora::tool {
namespace {

// Colour fix keeps the most colourful pixel's colour, so that every picture shows what it does.
host::Point mostColourfulPoint(const FilterImage& picture) {
  host::Point best;
  int widest = -1;
  for (unsigned y = 4; y + 4 < picture.height; y += 3) {
    for (unsigned x = 4; x + 4 < picture.width; x += 3) {
      const std::uint8_t* const p = picture.picData + 4 * (std::size_t{y} * picture.width + x);
      const auto [low, high] = std::minmax({p[0], p[1], p[2]});
      if (high - low > widest) {
        widest = high - low;
        best = {static_cast<int>(x), static_cast<int>(y)};
      }
    }
  }
  return best;
}

}  // namespace

LookSettings exampleSettings(const Mode& mode, int strength, bool singleThread,
                             const FilterImage& picture) {
  LookSettings settings;
  settings.mode = &mode;
  settings.values.strength = strength;
  settings.values.singleThread = singleThread;
  if (mode.reads(kPick)) settings.values.pick = mostColourfulPoint(picture);
  return settings;
}

}  // namespace lumora::tool
