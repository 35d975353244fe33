#include "default_pack/default_pack.h"

#include <cstring>

#include "default_pack/paint/painters.h"
#include "resources/texture_pack.h"

namespace lumora {

void drawDefaultPack(std::uint8_t* bytes) {
  std::memset(bytes, 0, kPackHeaderBytes);
  std::memcpy(bytes, kPackSizeBytes, sizeof kPackSizeBytes);
  std::memcpy(bytes + kPackMarkOffset, kPackMark, sizeof kPackMark);

  const auto image = [bytes](int slot) { return bytes + kPackImages[slot].offset; };
  paint::paintShade(image(kSlotShade));
  for (int direction = 0; direction < kDirectionCount; ++direction) {
    paint::paintLeak(image(kSlotLeak0 + direction), direction);
  }
  paint::paintClouds(image(kSlotClouds));
  paint::paintVignette(image(kSlotVignette));
  paint::paintEdgeBurn(image(kSlotEdgeBurn));
  paint::paintLamp(image(kSlotLamp));
  paint::paintDusk(image(kSlotDusk));
  paint::paintFalloff(image(kSlotFalloff));
  paint::paintGrain(image(kSlotGrain));
  paint::paintBlotch(image(kSlotBlotch));
  paint::paintSpeck(image(kSlotSpeck));
}

}  // namespace lumora
