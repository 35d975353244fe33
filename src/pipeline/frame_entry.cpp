#include "pipeline/frame_entry.h"

#include <cstdio>

#include "modes/modes.h"
#include "pipeline/dispatch.h"
#include "pipeline/frame_checks.h"
#include "platform/host_block.h"
#include "platform/log.h"

namespace lumora {
namespace {

// 0..15 becomes 8..15: the weakest call still mixes in half of the look. The caller sees the change
// in its record, except for blur and tilt-shift, whose level this is.
void adjustStrength(FilterProcessParam& param, bool isAlbum) {
  const ModeFacts* const facts = findModeFacts(param.eMode);
  const bool isLevel = isAlbum && facts != nullptr && facts->strength == StrengthUse::kBlurLevel;
  if (!isLevel && param.effectRatio < LUMORA_FULL_STRENGTH)
    param.effectRatio = param.effectRatio / 2 + 8;
}

// Whether the host is asked for room for a copy of the picture; a mode that does not exist is found
// out later.
bool isBlended(std::uint32_t mode, int ratio) {
  const ModeFacts* const facts = findModeFacts(mode);
  return ratio < LUMORA_FULL_STRENGTH && (facts == nullptr || facts->isBlended());
}

Call makeCall(FilterHandle* handle, const FilterImage& image, const FilterProcessParam& param,
              const FilterAlbumParam* album, const MosaicRect& rect) {
  const Picture picture{static_cast<PixelFormat>(image.eFormat), image.picData,
                        static_cast<int>(image.width), static_cast<int>(image.height),
                        image.stride};
  return {.picture = picture,
          .handle = FilterHandleView(handle),
          .mode = param.eMode,
          .direction = param.eDirection,
          .ratio = param.effectRatio,
          .rect = rect,
          .mosaicSize = param.mosaicSize,
          .threads = param.singleThread != 0 ? Threads::kCaller : Threads::kFour,
          .copy = nullptr,
          .blur = album != nullptr ? &album->stBlur : nullptr,
          .tiltShift = album != nullptr ? &album->stTiltShift : nullptr,
          .fixColour = album != nullptr ? &album->stFixColor : nullptr};
}

Status dispatchWithTrace(const Call& call) {
  const bool traced = call.picture.format == PixelFormat::kNv12 && call.threads == Threads::kFour;
  if (traced) std::puts("Before FilterProcessNV12_multiThred!");
  const Status status = dispatch(call);
  if (traced) std::puts("After FilterProcessNV12_multiThred!");
  return status;
}

}  // namespace

Status processFrame(FilterHandle* handle, const FilterImage* image, FilterProcessParam* param,
                    const FilterAlbumParam* album) {
  Status status = checkRecords(handle, image, param);
  if (status != Status::kOk) return status;
  adjustStrength(*param, album != nullptr);

  MosaicRect rect{};
  status = checkAlbumMode(*image, *param, album);
  if (status == Status::kOk && param->eMode == LUMORA_MODE_MOSAIC) {
    status = checkMosaic(*image, *param, rect);
  }
  if (status == Status::kOk) status = checkFormat(*image);
  if (status != Status::kOk) return status;

  Call call = makeCall(handle, *image, *param, album, rect);
  HostBlock copy;
  if (isBlended(call.mode, call.ratio)) {
    copy = HostBlock(call.handle.allocator(), call.picture.bytes());
    if (!copy) {
      return fail(Status::kNoMemory, image->eFormat == LUMORA_FORMAT_NV21
                                         ? "[%s] Mem malloc error!\n"
                                         : "[%s] can't malloc enough memory\n");
    }
    call.copy = copy.data();
  }
  status = dispatchWithTrace(call);
  if (status != Status::kOk) logError("[%s] process failed!\n");
  return status;
}

}  // namespace lumora
