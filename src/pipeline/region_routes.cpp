#include <algorithm>

#include "effects/colour_fix/colour_fix.h"
#include "effects/mosaic/mosaic.h"
#include "pipeline/routes.h"
#include "platform/host_block.h"
#include "platform/log.h"

namespace lumora {

Status routeMosaic(const Call& call, const ModeRow&) {
  const int weight = std::min<int>(call.ratio, LUMORA_FULL_STRENGTH);
  FilterMosaic(call.picture, call.rect, call.mosaicSize, weight, call.handle.allocator(),
               call.threads);
  return Status::kOk;
}

Status routeColourFix(const Call& call, const ModeRow& row) {
  if (!call.picture.isRgba() || call.fixColour == nullptr) {
    return reported(call, row, Status::kBadArgument);
  }
  const HostBlock work(call.handle.allocator(), colourFixBytes(call.picture, *call.fixColour));
  if (!work) return fail(Status::kNoMemory, "[%s] can't malloc enough memory!\n");
  return reported(call, row,
                  FilterFixColor(call.picture, *call.fixColour, work.data(), call.threads));
}

}  // namespace lumora
