#include "effects/colour_fix.h"
#include "effects/mosaic.h"
#include "pipeline/routes.h"
#include "platform/host_block.h"
#include "platform/log.h"

namespace lumora {

// A mosaic that failed has logged why and left the picture untouched; hosts are told nothing else.
Status routeMosaic(const Call& call, const ModeRow&) {
  static_cast<void>(FilterMosaic(call.picture, call.rect, call.mosaicSize, call.handle.allocator(),
                                 call.threads));
  return Status::kOk;
}

Status routeColourFix(const Call& call, const ModeRow& row) {
  if (!call.picture.isRgba() || call.fixColour == nullptr) {
    return reported(call, row, Status::kBadArgument);
  }
  const HostBlock work(call.handle.allocator(), colourFixBytes(call.picture, *call.fixColour));
  if (!work) return fail(Status::kNoMemory, "[%s] can't malloc enough memory!\n");
  const auto run =
      call.threads == Threads::kFour ? FilterFixColor_multiThread : FilterFixColor_RGBA;
  return reported(call, row, run(call.picture, *call.fixColour, work.data()));
}

}  // namespace lumora
