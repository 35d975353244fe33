#include "support/mode_calls.h"

#include <algorithm>
#include <sstream>

#include "modes/modes.h"

namespace lumora::test {
namespace {

// A mask whose last row ends right before an inaccessible page.
constexpr int kMaskWidth = 37;
constexpr int kMaskHeight = 29;
constexpr int kMaskStride = 41;

const std::uint8_t* mask() {
  static const GuardedBuffer buffer(kMaskStride * (kMaskHeight - 1) + kMaskWidth);
  static const bool filled = [] {
    Noise noise(5);
    std::generate_n(buffer.data(), buffer.size(), [&] { return noise.byte() < 90 ? 0 : 1; });
    return true;
  }();
  return filled ? buffer.data() : nullptr;
}

// In the middle, or in the lower right corner with blocks that do not divide it.
void setMosaic(FilterProcessParam& param, PixelSize picture, int variant) {
  const int side = std::min({picture.width, picture.height, 400});
  param.rectWidth = variant == 0 ? side / 2 * 2 : side / 4 * 2;
  param.rectHeight = side / 4 * 2;
  param.rectX = (picture.width - param.rectWidth) / (variant == 0 ? 4 : 2) * 2;
  param.rectY = (picture.height - param.rectHeight) / (variant == 0 ? 4 : 2) * 2;
  param.mosaicSize = variant == 0 ? 8 : 11;
}

}  // namespace

std::vector<ModeCall> allModeCalls() {
  std::vector<ModeCall> calls;
  for (const ModeFacts& mode : kModes) {
    for (const PixelFormat format : kFormats) {
      if (format == PixelFormat::kRgba || !mode.rgbaOnly) calls.push_back({mode.number, format});
    }
  }
  return calls;
}

bool usesTexturePlanes(std::uint32_t mode) {
  return usesTexture(mode) || mode == LUMORA_MODE_MEISHIMENGHUAN;
}

TestHandle::Layout handleLayout(TexturePath path, PixelSize picture) {
  switch (path) {
    case TexturePath::kUnsized: return {.textureSize = kPackTextureSize, .prepared = false};
    case TexturePath::kOtherSize: return {.textureSize = {picture.height + 31, 89}};
    default: return {.textureSize = picture};
  }
}

FilterAlbumParam paramFor(const ModeCall& call, PixelSize picture) {
  const std::int32_t w = picture.width, h = picture.height;
  FilterAlbumParam param{};
  param.stProcess.eMode = call.mode;
  param.stProcess.eDirection = 2;
  param.stProcess.effectRatio = call.strength;
  param.stProcess.singleThread = call.onCaller ? 1 : 0;
  setMosaic(param.stProcess, picture, call.variant);
  if (call.variant == 0) {
    param.stBlur = {w / 2, h / 2, h / 6, h / 3};
    param.stTiltShift = {w / 2, h / 4, w / 2, h * 3 / 4, 8};
    param.stFixColor = {200, 40, 30, 40, nullptr, 0, 0, 0};
  } else {
    param.stBlur = {w - 3, 5, h / 2, h + 40};
    param.stTiltShift = {w / 5, h / 3, w * 2 / 3, h - 4, 20};
    param.stFixColor = {20, 90, 220, 90, mask(), kMaskWidth, kMaskHeight, kMaskStride};
  }
  return param;
}

std::uint32_t run(const ModeCall& call, FilterHandle* handle, const FilterImage& image) {
  const PixelSize size = {static_cast<int>(image.width), static_cast<int>(image.height)};
  FilterAlbumParam param = paramFor(call, size);
  if (findModeFacts(call.mode)->albumOnly) return filterProcess_for_album(handle, &image, &param);
  return filterProcess(handle, &image, &param.stProcess);
}

std::string modeName(const ModeCall& call) {
  return std::string(findModeFacts(call.mode)->name) + ' ' + formatName(call.format);
}

std::string pathName(TexturePath path) {
  static constexpr const char* kNames[] = {"prepared", "unsized", "other-size"};
  return kNames[static_cast<int>(path)];
}

std::string describe(const ModeCall& call) {
  std::ostringstream text;
  text << modeName(call) << ' ' << pathName(call.path) << (call.onCaller ? " one" : " four")
       << " threads, strength " << call.strength << ", variant " << call.variant;
  return text.str();
}

}  // namespace lumora::test
