#include "resources/prepare_textures.h"

#include "resources/handle_layout.h"
#include "resources/texture_pack.h"

namespace lumora {
namespace {

bool wanted(std::uint8_t handleMode, const ModeFacts& mode) {
  return mode.texture && (handleMode == LUMORA_MODE_ANY || handleMode == mode.number);
}

Status stretchImage(const PackImage& image, const std::uint8_t* pack, PixelSize size,
                    std::uint8_t* plane) {
  const ResizeStripe whole = {.src = pack + image.offset,
                              .dst = plane,
                              .srcWidth = image.size.width,
                              .srcHeight = image.size.height,
                              .dstWidth = size.width,
                              .dstHeight = size.height,
                              .firstRow = 0,
                              .endRow = size.height,
                              .format = image.bytesPerPixel};
  const Status status = StripeRunner::run(
      splitRows(size.height),
      [&](const Stripe& rows, int) { MixImgResizeStripe(rowsOf(whole, rows)); },
      kInitialisationThreadFailure);
  // The host keeps the handle after a failure: what the missing workers left out is made good, so
  // that not even a host that uses it reads undefined bytes.
  if (status != Status::kOk) MixImgResizeStripe(whole);
  return status;
}

// The film look's other textures follow the floating-point rule.
void prepareFilm(const std::uint8_t* pack, PixelSize size, const FilterHandleView& handle) {
  const auto nearest = [pack](const PackImage& image, PixelSize to, std::uint8_t* dst) {
    ImResizeNearest(image.size.width, image.size.height, to.width, to.height, pack + image.offset,
                    dst);
  };
  const SmallTextureSizes small = handle.smallTextures();
  nearest(kPackImages[kSlotGrain], size, handle.plane(kGrainPlane));
  nearest(kPackImages[kSlotBlotch], small.blotch, handle.blotch());
  nearest(kPackImages[kSlotSpeck], small.speck, handle.speck());
}

}  // namespace

Status PrepareTextures(std::uint8_t mode, std::int32_t width, std::int32_t height,
                       std::uint32_t direction, const std::uint8_t* pack, FilterHandle* handle) {
  const PixelSize size = {width, height};
  const FilterHandleView view(handle);
  Status status = Status::kOk;
  for (const ModeFacts& facts : kModes) {
    if (!wanted(mode, facts)) continue;
    const TextureUse& use = facts.texture;
    const PackImage& image = kPackImages[use.slot + (facts.reads(kDirection) ? direction : 0)];
    const Status done = stretchImage(image, pack, size, view.plane(use.plane));
    if (done != Status::kOk) status = done;
    if (use.takes(kSlotGrain)) prepareFilm(pack, size, view);
  }
  return status;
}

}  // namespace lumora
