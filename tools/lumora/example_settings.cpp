#include "example_settings.h"

#include <algorithm>

namespace lumora::tool {
namespace {

// Colour fix keeps the most colourful pixel's colour, so that every picture shows what it does.
Point mostColourfulPoint(const std::vector<std::uint8_t>& rgba, Size size) {
  Point best;
  int widest = -1;
  for (unsigned y = 4; y + 4 < size.height; y += 3) {
    for (unsigned x = 4; x + 4 < size.width; x += 3) {
      const std::uint8_t* const p = &rgba[4 * (std::size_t{y} * size.width + x)];
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
                             const std::vector<std::uint8_t>& rgba, Size size) {
  LookSettings settings;
  settings.mode = &mode;
  settings.strength = strength;
  settings.singleThread = singleThread;
  if (mode.number == LUMORA_MODE_COLOUR_FIX) settings.pick = mostColourfulPoint(rgba, size);
  return settings;
}

}  // namespace lumora::tool
