#include "resources/prepare_textures.h"

#include "resources/handle_layout.h"
#include "resources/texture_pack.h"

namespace lumora {
namespace {

// Textures that are stretched by the fixed-point rule on four workers, in the order of preparation.
struct StretchedTexture {
  std::uint8_t mode;
  PackSlot slot;
  int plane;
};
constexpr StretchedTexture kStretchedTextures[] = {
    {LUMORA_MODE_LAODIANYING, kSlotShade, 0}, {LUMORA_MODE_LIANGHONG, kSlotLeak0, 1},
    {LUMORA_MODE_YUNDUAN, kSlotClouds, 4},    {LUMORA_MODE_EARLYBIRD, kSlotVignette, 5},
    {LUMORA_MODE_XPRO2, kSlotEdgeBurn, 6},    {LUMORA_MODE_HUDSON, kSlotLamp, 7},
    {LUMORA_MODE_MYFAIR, kSlotDusk, 8},       {LUMORA_MODE_LOFI, kSlotFalloff, 9},
};

bool wanted(std::uint8_t handleMode, std::uint8_t mode) {
  return handleMode == LUMORA_MODE_ANY || handleMode == mode;
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
  const Status status =
      StripeRunner::run(&PrepareTextureStripe, resizeStripes(whole, splitRows(size.height)),
                        kInitialisationThreadFailure);
  // The host keeps the handle after a failure: what the missing workers left out is made good, so
  // that not even a host that uses it reads undefined bytes.
  if (status != Status::kOk) PrepareTextureStripe(whole);
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

void PrepareTextureStripe(const ResizeStripe& stripe) { MixImgResizeStripe(stripe); }

Status PrepareTextures(std::uint8_t mode, std::int32_t width, std::int32_t height,
                       std::uint32_t direction, const std::uint8_t* pack, FilterHandle* handle) {
  const PixelSize size = {width, height};
  const FilterHandleView view(handle);
  Status status = Status::kOk;
  for (const StretchedTexture& texture : kStretchedTextures) {
    if (!wanted(mode, texture.mode)) continue;
    const bool byDirection = texture.slot == kSlotLeak0;
    const PackImage& image = kPackImages[texture.slot + (byDirection ? direction : 0)];
    const Status done = stretchImage(image, pack, size, view.plane(texture.plane));
    if (done != Status::kOk) status = done;
    if (texture.mode == LUMORA_MODE_LAODIANYING) prepareFilm(pack, size, view);
  }
  return status;
}

}  // namespace lumora
