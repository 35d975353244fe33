#include "pipeline/dispatch.h"

#include "config/filter_params.h"
#include "pipeline/routes.h"
#include "platform/log.h"

namespace lumora {
namespace {

// The entry has made these checks already; the dispatcher keeps its own so that it can be called by
// itself.
Status checkPicture(const Picture& picture) {
  const std::ptrdiff_t rowBytes = std::ptrdiff_t{picture.widthPixels} * (picture.isRgba() ? 4 : 1);
  if (!picture.isRgba() && (picture.widthPixels % 2 != 0 || picture.heightRows % 2 != 0)) {
    return fail(Status::kBadArgument, "[%s] width or height error!\n");
  }
  if (picture.strideBytes < rowBytes) {
    return fail(Status::kBadArgument, "[%s] width or stride error!\n");
  }
  return Status::kOk;
}

}  // namespace

Status dispatch(const Call& call) {
  const Status checked = checkPicture(call.picture);
  if (checked != Status::kOk) return checked;
  const ModeRow* row = findMode(call.mode);
  if (row == nullptr) return fail(Status::kBadArgument, "[%s] mode error!\n");
  return row->route(call, *row);
}

Status reported(const Call& call, const ModeRow& row, Status status) {
  if (status != Status::kOk) {
    const FormatMessages& messages =
        call.threads == Threads::kFour ? row.failure : row.failureOnCaller;
    logError(messages.of(call.picture.format));
  }
  return status;
}

const std::uint8_t* tuningBlock(const Call& call) {
  const int offset = tuningOffsetOf(static_cast<int>(call.mode));
  return offset < 0 ? nullptr : call.handle.params() + offset;
}

Status runModeLook(const Call& call, const ModeRow& row, const std::uint8_t* texture) {
  const LookInputs inputs{texture, tuningBlock(call), call.ratio};
  return reported(call, row, runLook(row.look(), call.picture, inputs, call.threads));
}

Status routeLook(const Call& call, const ModeRow& row) { return runModeLook(call, row, nullptr); }

}  // namespace lumora
