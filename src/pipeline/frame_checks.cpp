#include "pipeline/frame_checks.h"

#include <algorithm>

#include "modes/modes.h"
#include "platform/log.h"

namespace lumora {
namespace {

constexpr std::int64_t kLongestRectSide = LUMORA_LONGEST_MOSAIC_SIDE;
constexpr std::int32_t kShortestRectSide = LUMORA_SHORTEST_MOSAIC_SIDE;

bool sideInRange(std::uint32_t side) {
  return side >= LUMORA_SHORTEST_SIDE && side <= LUMORA_LONGEST_SIDE;
}

bool strideHolds(const FilterImage& image, std::int64_t rowBytes) {
  return image.stride >= rowBytes;
}

Status checkRgbaStride(const FilterImage& image) {
  if (!strideHolds(image, std::int64_t{4} * image.width)) {
    return fail(Status::kBadArgument, "[%s] width or stride error!\n");
  }
  return Status::kOk;
}

}  // namespace

Status checkRecords(FilterHandle* handle, const FilterImage* image,
                    const FilterProcessParam* param) {
  if (image == nullptr) return fail(Status::kBadArgument, "[%s] pstImage is NULL!\n");
  if (param == nullptr) return fail(Status::kBadArgument, "[%s] pstParam is NULL!\n");
  if (param->eDirection > 3) {
    return fail(Status::kBadArgument, "[%s] direction is not correct!\n");
  }
  if (!sideInRange(image->width) || !sideInRange(image->height)) {
    return fail(Status::kBadArgument, "[%s] width or height is not correct!\n");
  }
  if (handle == nullptr) return fail(Status::kBadState, "[%s] initialization error!\n");
  if (image->picData == nullptr) return fail(Status::kBadState, "[%s] picData error!\n");

  const std::uint32_t handleMode = FilterHandleView(handle).header().mode();
  if (handleMode != LUMORA_MODE_ANY && usesTexture(param->eMode) && param->eMode != handleMode) {
    return fail(Status::kBadArgument, "[%s] eMode error!\n");
  }
  if (static_cast<std::uint32_t>(param->effectRatio) > LUMORA_STRONGEST) {
    // The mark after "error" is a full-width exclamation mark in GB2312.
    return fail(Status::kBadArgument, "[%s] effectRatio error\xA3\xA1\n");
  }
  return Status::kOk;
}

Status checkAlbumMode(const FilterImage& image, const FilterProcessParam& param,
                      const FilterAlbumParam* album) {
  const ModeFacts* const facts = findModeFacts(param.eMode);
  if (album == nullptr) {
    if (facts != nullptr && facts->albumOnly) {
      // The mark after "Tiltshift" is an ideographic comma in GB2312.
      return fail(Status::kBadArgument,
                  "[%s] Current interface do not support Tiltshift\xA1\xA2"
                  "Blur and fixColor. Please use new interface: filterProcess_for_album()!\n");
    }
    return Status::kOk;
  }
  // The marks after "error" are full-width exclamation marks in GB2312.
  if (param.eMode == LUMORA_MODE_TILT_SHIFT &&
      static_cast<std::uint32_t>(album->stTiltShift.core) > LUMORA_STRONGEST) {
    return fail(Status::kBadArgument, "[%s] TiltShitf param error\xA3\xA1\n");
  }
  if (param.eMode == LUMORA_MODE_COLOUR_FIX) {
    if (image.eFormat != LUMORA_FORMAT_RGBA) {
      return fail(Status::kBadArgument,
                  "[%s] FixColor param error\xA3\xA1Only suport RGBA format!\n");
    }
    return checkRgbaStride(image);
  }
  return Status::kOk;
}

Status checkMosaic(const FilterImage& image, const FilterProcessParam& param, MosaicRect& rect) {
  const std::int64_t right = std::int64_t{param.rectX} + param.rectWidth;
  const std::int64_t bottom = std::int64_t{param.rectY} + param.rectHeight;
  const std::int64_t width = image.width, height = image.height;
  if (param.rectX < 0 || param.rectY < 0 || right > width || bottom > height) {
    return fail(Status::kBadState, "[%s] Rect region is out of picture, Error!\n");
  }
  if (param.rectWidth % 2 != 0 || param.rectHeight % 2 != 0) {
    return fail(Status::kBadArgument, "[%s] width or height of region is cannot div by 2!\n");
  }
  if (param.rectX % 2 != 0 || param.rectY % 2 != 0) {
    return fail(Status::kBadState,
                "[%s] the start possition of Rect region is cannot div by 2! Error!\n");
  }
  if (param.rectWidth < kShortestRectSide || param.rectHeight < kShortestRectSide) {
    return fail(Status::kBadState, "[%s] the size of region is too small, Error!\n");
  }
  if (param.rectWidth > std::min(width, kLongestRectSide) ||
      param.rectHeight > std::min(height, kLongestRectSide)) {
    return fail(Status::kBadState, "[%s] the size of region is too big, Error!\n");
  }
  // Both sides are within the limit here, so the shorter one is the only upper bound.
  if (param.mosaicSize < kShortestRectSide ||
      param.mosaicSize > std::min(param.rectWidth, param.rectHeight)) {
    return fail(Status::kBadState, "[%s] the size of mosaic block is out of range, Error!\n");
  }
  rect = {param.rectX, param.rectY, static_cast<std::int32_t>(right),
          static_cast<std::int32_t>(bottom)};
  return Status::kOk;
}

Status checkFormat(const FilterImage& image) {
  switch (image.eFormat) {
    case LUMORA_FORMAT_RGBA: return checkRgbaStride(image);
    case LUMORA_FORMAT_NV21:
    case LUMORA_FORMAT_NV12:
      if (image.width % 2 != 0 || image.height % 2 != 0) {
        return fail(Status::kBadArgument, "[%s] width or height error!\n");
      }
      if (!strideHolds(image, image.width)) {
        return fail(Status::kBadArgument, "[%s] width or stride error!\n");
      }
      return Status::kOk;
    default: return fail(Status::kBadArgument, "[%s] fomat error!\n");
  }
}

}  // namespace lumora
