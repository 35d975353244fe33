// Routes of the modes that work on reduced copies of the picture.
#include "effects/focus.h"
#include "effects/glow.h"
#include "pipeline/routes.h"

namespace lumora {
namespace {

Status runGlow(const Call& call, const ModeRow& row, std::uint8_t* scratch) {
  return reported(
      call, row,
      FilterMeishimenghuan(call.picture, scratch, tuningBlock(call), call.ratio, call.threads));
}

}  // namespace

// The handle's three spare planes serve when they have the picture's size.
Status routeGlow(const Call& call, const ModeRow& row) {
  const Picture& picture = call.picture;
  const PixelSize texture = call.handle.textureSize();
  if (texture.width == picture.widthPixels && texture.height == picture.heightRows) {
    return runGlow(call, row, call.handle.plane(kScratchPlane));
  }
  const std::int64_t bytes = 3 * std::int64_t{picture.widthPixels} * picture.heightRows;
  const HostBlock scratch(call.handle.allocator(), static_cast<std::uint64_t>(bytes));
  if (scratch) return runGlow(call, row, scratch.data());
  return outOfMemory(call, bytes);
}

Status routeBlur(const Call& call, const ModeRow& row) {
  return reported(
      call, row,
      FilterBlur(call.picture, *call.blur, call.ratio, call.handle.allocator(), call.threads));
}

Status routeTiltShift(const Call& call, const ModeRow& row) {
  return reported(call, row,
                  FilterTiltshift(call.picture, *call.tiltShift, call.ratio,
                                  call.handle.allocator(), call.threads));
}

}  // namespace lumora
