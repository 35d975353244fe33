// Every mode through the exported functions: MODE/format/size/s<strength>/t<threads>/<textures>.
// Textures are prepared at the picture's size, or resampled for every call (percall).
#include <algorithm>
#include <vector>

#include "cases.h"
#include "host.h"

namespace lumora::bench {
namespace {

enum class Textures { kPrepared, kPerCall };

// Whether a handle without a size costs the mode more.
enum class Needs { kPicture, kTextureToo };

using FillSettings = void (*)(FilterAlbumParam& param, Size size);

struct ModeWork {
  const char* name;
  std::uint32_t mode;
  Needs needs;
  FillSettings fill = nullptr;  // settings beyond mode and strength
  bool isRgbaOnly = false;
  std::vector<int> strengths = {8, 16, 32};
  int targetStrength = 16;
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

const std::vector<ModeWork>& modeWorks() {
  static const std::vector<ModeWork> works = {
      {"HEIBAI", LUMORA_MODE_HEIBAI, Needs::kPicture},
      {"MORAN", LUMORA_MODE_MORAN, Needs::kPicture},
      // One look at more strengths, to show what they cost.
      {"RIXI", LUMORA_MODE_RIXI, Needs::kPicture, nullptr, false, {0, 4, 8, 12, 15, 16, 24, 32}},
      {"FUGU", LUMORA_MODE_FUGU, Needs::kPicture},
      {"VALENCIA", LUMORA_MODE_VALENCIA, Needs::kPicture},
      {"NUANYANGYANG", LUMORA_MODE_NUANYANGYANG, Needs::kPicture},
      {"TIANMEIKEREN", LUMORA_MODE_TIANMEIKEREN, Needs::kPicture},
      {"YUNDUAN", LUMORA_MODE_YUNDUAN, Needs::kTextureToo},
      {"LIANGHONG", LUMORA_MODE_LIANGHONG, Needs::kTextureToo},
      {"LOFI", LUMORA_MODE_LOFI, Needs::kTextureToo},
      {"EARLYBIRD", LUMORA_MODE_EARLYBIRD, Needs::kTextureToo},
      {"XPRO2", LUMORA_MODE_XPRO2, Needs::kTextureToo},
      {"HUDSON", LUMORA_MODE_HUDSON, Needs::kTextureToo},
      {"MYFAIR", LUMORA_MODE_MYFAIR, Needs::kTextureToo},
      {"LAODIANYING", LUMORA_MODE_LAODIANYING, Needs::kTextureToo},
      {"MEISHIMENGHUAN", LUMORA_MODE_MEISHIMENGHUAN, Needs::kTextureToo},
      {"MOSAIC", LUMORA_MODE_MOSAIC, Needs::kPicture, fillMosaic, false, {8, 16}},
      {"COLOURFIX", LUMORA_MODE_COLOUR_FIX, Needs::kPicture, fillColourFix, true, {16}},
      {"COLOURFIX-MASK", LUMORA_MODE_COLOUR_FIX, Needs::kPicture, fillColourFixMask, true, {16}},
      // The strength of these is their level.
      {"BLUR", LUMORA_MODE_BLUR, Needs::kPicture, fillBlur, false, {1, 3, 16, 32}, 3},
      {"TILTSHIFT",
       LUMORA_MODE_TILT_SHIFT,
       Needs::kPicture,
       fillTiltShift,
       false,
       {1, 3, 16, 32},
       3},
  };
  return works;
}

bool isAlbumMode(std::uint32_t mode) { return mode >= LUMORA_MODE_COLOUR_FIX; }

struct ModeCase {
  ModeWork work;
  Format format;
  Size size;
  int strength;
  int threads;
  Textures textures;

  std::string name() const {
    return std::string(work.name) + "/" + format.name + "/" + size.name() + "/s" +
           std::to_string(strength) + "/t" + std::to_string(threads) +
           (textures == Textures::kPrepared ? "/prepared" : "/percall");
  }

  // What the targets are stated for; and of RGBA on one thread what the cost depends on: every
  // strength, or another size, or a texture stretched for the call.
  bool isQuick() const {
    const bool isTarget = strength == work.targetStrength;
    if (threads == 1 && format.code == LUMORA_FORMAT_RGBA) {
      const int others = (isTarget ? 0 : 1) + (isTargetSize(size) ? 0 : 1) +
                         (textures == Textures::kPrepared ? 0 : 1);
      return others <= 1;
    }
    if (!isTargetSize(size) || textures == Textures::kPerCall) return false;
    if (format.code == LUMORA_FORMAT_NV21) return isTarget && threads == 1;
    return isTarget || (threads == 1 && !isAlbumMode(work.mode) && strength % 8 == 0);
  }
};

PictureWork modeCall(const ModeCase& c, FilterHandle* handle, const TestPicture& picture) {
  FilterAlbumParam settings{};
  settings.stProcess.eMode = c.work.mode;
  settings.stProcess.effectRatio = c.strength;
  settings.stProcess.singleThread = c.threads == 1;
  if (c.work.fill != nullptr) c.work.fill(settings, c.size);
  const FilterImage image = picture.image();
  return [=, isAlbum = isAlbumMode(c.work.mode)] {
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
  for (const int strength : work.strengths) {
    for (const int threads : {1, 4}) {
      addModeCase({work, format, size, strength, threads, Textures::kPrepared});
      if (work.needs == Needs::kTextureToo) {
        addModeCase({work, format, size, strength, threads, Textures::kPerCall});
      }
    }
  }
}

}  // namespace

void addModeCases() {
  for (const ModeWork& work : modeWorks()) {
    for (const Format format : kFormats) {
      if (work.isRgbaOnly && format.code != LUMORA_FORMAT_RGBA) continue;
      for (const Size size : kSizes) addModeCasesOf(work, format, size);
    }
  }
}

}  // namespace lumora::bench
