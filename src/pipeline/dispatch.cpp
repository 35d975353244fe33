#include "pipeline/dispatch.h"

#include <cstdio>

#include "config/filter_params.h"
#include "pipeline/routes.h"
#include "platform/log.h"

namespace lumora {
namespace {

const char* formatName(PixelFormat format) {
  switch (format) {
    case PixelFormat::kNv21: return "NV21 ";
    case PixelFormat::kNv12: return "NV12 ";
    default: return "RGBA ";
  }
}

// The failure's message, itself a format like all messages.
struct Message {
  char text[96];
};

Message failureOf(const Call& call, const ModeRow& row) {
  Message message;
  const auto compose = [&message](const char* routine, const char* format, const char* name) {
    std::snprintf(message.text, sizeof message.text, "[%%s] %s%s%s failed!\n", routine, format,
                  name);
  };
  if (row.look != nullptr) {
    const Capitals name = capitals(row.facts->name);
    compose(row.lookRoutine, formatName(call.picture.format), name.text);
    return message;
  }
  const bool isNv = !call.picture.isRgba(), isFour = call.threads == Threads::kFour;
  const RoutineNames& names = row.effect;
  compose(
      isFour ? (isNv ? names.onFourNv : names.onFour) : (isNv ? names.onCallerNv : names.onCaller),
      "", "");
  return message;
}

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
  return status == Status::kOk ? status : fail(status, failureOf(call, row).text);
}

const std::uint8_t* tuningBlock(const Call& call) {
  const int offset = tuningOffsetOf(static_cast<int>(call.mode));
  return offset < 0 ? nullptr : call.handle.params() + offset;
}

Status runModeLook(const Call& call, const ModeRow& row, const TextureSource& texture) {
  const LookInputs inputs{texture, tuningBlock(call), call.ratio};
  return reported(call, row, runLook(row.look(), call.picture, inputs, call.threads));
}

Status routeLook(const Call& call, const ModeRow& row) { return runModeLook(call, row, {}); }

}  // namespace lumora
