#include "looks/look.h"

namespace lumora {

Status runLook(const Look& look, const Picture& picture, const LookInputs& inputs,
               Threads threads) {
  return overStripes(
      threads, picture.heightRows, splitOf(picture), [&](const Stripe& stripe, int k) {
        look.runForm(picture)(
            {PixelRows::of(picture, stripe, k, inputs.texture, look.textureBytesPerPixel),
             inputs.block, inputs.ratio});
      });
}

}  // namespace lumora
