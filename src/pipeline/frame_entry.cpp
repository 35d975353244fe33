#include "pipeline/frame_entry.h"

#include <cstdio>
#include <cstring>

#include "pipeline/dispatch.h"
#include "pipeline/frame_checks.h"
#include "pipeline/mode_table.h"
#include "pipeline/strength_blend.h"
#include "platform/host_block.h"
#include "platform/log.h"

namespace lumora {
namespace {

// 0..15 becomes 8..15: the weakest call still mixes in half of the look. The caller sees the change
// in its record, except for blur and tilt-shift, whose level this is.
void adjustStrength(FilterProcessParam& param, bool isAlbum) {
  const bool isLevel =
      isAlbum && (param.eMode == LUMORA_MODE_BLUR || param.eMode == LUMORA_MODE_TILT_SHIFT);
  if (!isLevel && param.effectRatio < kFullWeight) param.effectRatio = param.effectRatio / 2 + 8;
}

bool isBlended(std::uint32_t mode, int ratio) {
  return ratio < kFullWeight && mode != LUMORA_MODE_MEISHIMENGHUAN &&
         mode != LUMORA_MODE_COLOUR_FIX && mode != LUMORA_MODE_BLUR &&
         mode != LUMORA_MODE_TILT_SHIFT;
}

std::uint64_t pictureBytes(const FilterImage& image) {
  const auto plane = static_cast<std::uint64_t>(image.stride) * image.height;
  return image.eFormat == LUMORA_FORMAT_RGBA ? plane : plane * 3 / 2;
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

Status blend(const Call& call, const HostBlock& copy, std::size_t bytes) {
  if (call.threads == Threads::kCaller) {
    FilterBlend(copy.data(), call.picture.data, bytes, call.ratio);
    return Status::kOk;
  }
  return FilterBlend_multiThread(copy.data(), call.picture.data, bytes, call.ratio);
}

// A look that fails after touching the picture leaves it partly filtered; it is blended all the
// same, and the look's status is the one reported.
Status filterAndBlend(const Call& call, const HostBlock& copy, std::size_t bytes) {
  const Status filtered = dispatchWithTrace(call);
  const Status blended = copy ? blend(call, copy, bytes) : Status::kOk;
  const Status result = filtered != Status::kOk ? filtered : blended;
  if (result != Status::kOk) logError("[%s] process failed!\n");
  return result;
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

  const Call call = makeCall(handle, *image, *param, album, rect);
  const std::uint64_t bytes = pictureBytes(*image);
  HostBlock copy;
  if (isBlended(call.mode, call.ratio)) {
    copy = HostBlock(call.handle.allocator(), bytes);
    if (!copy) {
      return fail(Status::kNoMemory, image->eFormat == LUMORA_FORMAT_NV21
                                         ? "[%s] Mem malloc error!\n"
                                         : "[%s] can't malloc enough memory\n");
    }
    std::memcpy(copy.data(), image->picData, static_cast<std::size_t>(bytes));
  }
  return filterAndBlend(call, copy, static_cast<std::size_t>(bytes));
}

}  // namespace lumora
