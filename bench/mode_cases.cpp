// Every mode through the exported functions: MODE/format/size/s<strength>/t<threads>/<textures>.
// Textures are prepared at the picture's size, or resampled for every call (percall).
#include <algorithm>
#include <string>
#include <vector>

#include "cases.h"
#include "host.h"
#include "modes/modes.h"

namespace lumora::bench {
namespace {

enum class Textures { kPrepared, kPerCall };

using FillSettings = void (*)(FilterAlbumParam& param, Size size);

struct ModeWork {
  const ModeFacts* facts;
  FillSettings fill = nullptr;  // settings beyond mode and strength
  const char* variant = "";

  bool isLevel() const { return facts->strength == StrengthUse::kBlurLevel; }
  int targetStrength() const { return isLevel() ? 3 : LUMORA_FULL_STRENGTH; }
  // Whether a handle without a size costs more.
  bool needsTexture() const {
    return facts->texture || facts->number == LUMORA_MODE_MEISHIMENGHUAN;
  }

  std::string name() const {
    std::string name = capitals(facts->name).text;
    std::erase(name, '-');
    return name + variant;
  }
  std::vector<int> strengths() const {
    // One look at more strengths, to show what they cost.
    if (facts->number == LUMORA_MODE_RIXI) return {0, 4, 8, 12, 15, 16, 24, 32};
    switch (facts->strength) {
      case StrengthUse::kBlurLevel: return {1, 3, 16, 32};
      case StrengthUse::kUnused: return {16};
      case StrengthUse::kBlend: return {8, 16};
      default: return {8, 16, 32};
    }
  }
};

void fillMosaic(FilterAlbumParam& param, Size size) {
  FilterProcessParam& process = param.stProcess;
  process.rectWidth = std::min(size.width, 2000);
  process.rectHeight = std::min(size.height, 2000);
  process.rectX = (size.width - process.rectWidth) / 4 * 2;
  process.rectY = (size.height - process.rectHeight) / 4 * 2;
  process.mosaicSize = 16;
}

void fillColourFix(FilterAlbumParam& param, Size) {
  param.stFixColor.red = 200;
  param.stFixColor.green = 60;
  param.stFixColor.blue = 60;
  param.stFixColor.tolerance = 30;
}

void fillColourFixMask(FilterAlbumParam& param, Size size) {
  static const std::vector<std::uint8_t> mask = [] {
    std::vector<std::uint8_t> samples(1000 * 750, 0);
    std::fill(samples.begin() + 200 * 1000, samples.end(), std::uint8_t{255});
    return samples;
  }();
  fillColourFix(param, size);
  param.stFixColor.mask = mask.data();
  param.stFixColor.maskWidth = 1000;
  param.stFixColor.maskHeight = 750;
  param.stFixColor.maskStride = 1000;
}

void fillBlur(FilterAlbumParam& param, Size size) {
  const int shorter = std::min(size.width, size.height);
  param.stBlur = {size.width / 2, size.height / 2, shorter / 6, shorter / 3};
}

// A slanted band, the dearest kind of mask.
void fillTiltShift(FilterAlbumParam& param, Size size) {
  param.stTiltShift = {size.width * 45 / 100, size.height * 40 / 100, size.width * 55 / 100,
                       size.height * 60 / 100, 16};
}

FillSettings settingsOf(std::uint32_t mode) {
  switch (mode) {
    case LUMORA_MODE_MOSAIC: return fillMosaic;
    case LUMORA_MODE_COLOUR_FIX: return fillColourFix;
    case LUMORA_MODE_BLUR: return fillBlur;
    case LUMORA_MODE_TILT_SHIFT: return fillTiltShift;
    default: return nullptr;
  }
}

std::vector<ModeWork> modeWorks() {
  std::vector<ModeWork> works;
  for (const ModeFacts& mode : kModes) {
    works.push_back({&mode, settingsOf(mode.number)});
    if (mode.reads(kMask)) works.push_back({&mode, fillColourFixMask, "-MASK"});
  }
  return works;
}

struct ModeCase {
  ModeWork work;
  Format format;
  Size size;
  int strength;
  int threads;
  Textures textures;

  std::string name() const {
    return work.name() + "/" + format.name + "/" + size.name() + "/s" + std::to_string(strength) +
           "/t" + std::to_string(threads) +
           (textures == Textures::kPrepared ? "/prepared" : "/percall");
  }

  // What the targets are stated for; and of RGBA on one thread what the cost depends on: every
  // strength, or another size, or a texture stretched for the call.
  bool isQuick() const {
    const bool isTarget = strength == work.targetStrength();
    if (threads == 1 && format.code == LUMORA_FORMAT_RGBA) {
      const int others = (isTarget ? 0 : 1) + (isTargetSize(size) ? 0 : 1) +
                         (textures == Textures::kPrepared ? 0 : 1);
      return others <= 1;
    }
    if (!isTargetSize(size) || textures == Textures::kPerCall) return false;
    if (format.code == LUMORA_FORMAT_NV21) return isTarget && threads == 1;
    return isTarget || (threads == 1 && !work.facts->albumOnly && strength % 8 == 0);
  }
};

PictureWork modeCall(const ModeCase& c, FilterHandle* handle, const TestPicture& picture) {
  FilterAlbumParam settings{};
  settings.stProcess.eMode = c.work.facts->number;
  settings.stProcess.effectRatio = c.strength;
  settings.stProcess.singleThread = c.threads == 1;
  if (c.work.fill != nullptr) c.work.fill(settings, c.size);
  const FilterImage image = picture.image();
  return [=, isAlbum = c.work.facts->albumOnly] {
    FilterAlbumParam fresh = settings;
    return isAlbum ? filterProcess_for_album(handle, &image, &fresh)
                   : filterProcess(handle, &image, &fresh.stProcess);
  };
}

Round modeRound(const ModeCase& c, const std::shared_ptr<TestPicture>& picture, Memory memory) {
  FilterHandle* const handle =
      c.textures == Textures::kPrepared ? preparedHandle(c.size, memory) : unsizedHandle(memory);
  return pictureRound(picture, modeCall(c, handle, *picture));
}

void addModeCase(const ModeCase& c) {
  addCase(c.name(), c.isQuick(), [c] {
    const auto picture = std::make_shared<TestPicture>(c.format, c.size);
    return Subject{modeRound(c, picture, Memory::kReusing),
                   c.size.pixels(),
                   {"default", modeRound(c, picture, Memory::kDefault), true}};
  });
}

void addModeCasesOf(const ModeWork& work, Format format, Size size) {
  for (const int strength : work.strengths()) {
    for (const int threads : {1, 4}) {
      addModeCase({work, format, size, strength, threads, Textures::kPrepared});
      if (work.needsTexture()) {
        addModeCase({work, format, size, strength, threads, Textures::kPerCall});
      }
    }
  }
}

}  // namespace

void addModeCases() {
  for (const ModeWork& work : modeWorks()) {
    for (const Format format : kFormats) {
      if (work.facts->rgbaOnly && format.code != LUMORA_FORMAT_RGBA) continue;
      for (const Size size : kSizes) addModeCasesOf(work, format, size);
    }
  }
}

}  // namespace lumora::bench
