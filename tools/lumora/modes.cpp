#include "modes.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "errors.h"
#include "words.h"

namespace lumora::tool {
namespace {

using enum StrengthUse;

constexpr std::array kModes = {
    Mode{LUMORA_MODE_MORAN, "moran", "monochrome", "bright grey with lifted shadows", nullptr,
         false, kBlendAndCurves},
    Mode{LUMORA_MODE_RIXI, "rixi", "colour curves", "cool and faded", nullptr, false,
         kBlendAndCurves},
    Mode{LUMORA_MODE_FUGU, "fugu", "colour curves", "blue-green shadows under yellow lights",
         nullptr, false, kBlendAndCurves},
    Mode{LUMORA_MODE_VALENCIA, "valencia", "colour curves", "lifted shadows, a touch of green",
         nullptr, false, kBlendAndCurves},
    Mode{LUMORA_MODE_LAODIANYING, "laodianying", "aged film",
         "tinted grey with grain, blotches and specks", "shade, grain, marks", false,
         kBlendAndCurves},
    Mode{LUMORA_MODE_LIANGHONG, "lianghong", "texture", "a coloured light leak", "light leak",
         false, kBlendAndCurves},
    Mode{LUMORA_MODE_YUNDUAN, "yunduan", "texture", "soft clouds of light and colour curves",
         "clouds", false, kBlendAndCurves},
    Mode{LUMORA_MODE_EARLYBIRD, "earlybird", "texture", "colours that fade towards the corners",
         "vignette", false, kBlendAndCurves},
    Mode{LUMORA_MODE_NUANYANGYANG, "nuanyangyang", "colour curves", "warm yellow sunlight", nullptr,
         false, kBlendAndCurves},
    Mode{LUMORA_MODE_TIANMEIKEREN, "tianmeikeren", "colour curves", "pale and rosy", nullptr, false,
         kBlendAndCurves},
    Mode{LUMORA_MODE_MEISHIMENGHUAN, "meishimenghuan", "glow", "a dreamy glow, deeper contrast",
         nullptr, false, kOwn},
    Mode{LUMORA_MODE_HEIBAI, "heibai", "monochrome", "plain black and white", nullptr, false,
         kBlend},
    Mode{LUMORA_MODE_XPRO2, "xpro2", "texture", "dark corners and crossed colour curves",
         "vignette", false, kBlendAndCurves},
    Mode{LUMORA_MODE_HUDSON, "hudson", "texture", "an overlaid vignette and colour curves",
         "vignette", false, kBlendAndCurves},
    Mode{LUMORA_MODE_MYFAIR, "myfair", "texture", "lifted colours and a soft vignette", "vignette",
         false, kBlendAndCurves},
    Mode{LUMORA_MODE_LOFI, "lofi", "texture", "more contrast, falling shadows", "vignette", false,
         kBlendAndCurves},
    Mode{LUMORA_MODE_MOSAIC, "mosaic", "region", "turns a rectangle into square blocks", nullptr,
         false, kBlend},
    Mode{LUMORA_MODE_COLOUR_FIX, "colour-fix", "colour", "keeps one colour and greys the rest",
         nullptr, true, kUnused},
    Mode{LUMORA_MODE_BLUR, "blur", "focus", "blurs everything outside a circle", nullptr, false,
         kBlurLevel},
    Mode{LUMORA_MODE_TILT_SHIFT, "tilt-shift", "focus", "blurs everything outside a band", nullptr,
         false, kBlurLevel},
};

constexpr bool numberedInOrder() {
  for (unsigned i = 0; i < kModes.size(); ++i) {
    if (kModes[i].number != i + 1) return false;
  }
  return true;
}
static_assert(numberedInOrder() && kModes.size() == 20);

// "Colour_Fix" and "color-fix" are both "colorfix".
std::string plainForm(const std::string& name) {
  std::string plain = lowerCase(name);
  std::erase_if(plain, [](char c) { return c == '-' || c == '_' || c == ' '; });
  if (const auto at = plain.find("colour"); at != std::string::npos) plain.erase(at + 4, 1);
  return plain;
}

}  // namespace

std::span<const Mode> modes() { return kModes; }

std::vector<std::string> modeNames() {
  std::vector<std::string> names;
  for (const Mode& mode : kModes) names.emplace_back(mode.name);
  return names;
}

const Mode& findMode(const std::string& nameOrNumber) {
  if (!nameOrNumber.empty() && std::all_of(nameOrNumber.begin(), nameOrNumber.end(),
                                           [](unsigned char c) { return std::isdigit(c) != 0; })) {
    return kModes[static_cast<std::size_t>(parseInteger(nameOrNumber, 1, kModes.size())) - 1];
  }
  for (const Mode& mode : kModes) {
    if (plainForm(mode.name) == plainForm(nameOrNumber)) return mode;
  }
  const std::string hint = didYouMean(nameOrNumber, modeNames());
  throw UsageError(text("there is no look '", nameOrNumber, "'",
                        hint.empty() ? "; 'lumora looks' lists them all" : hint));
}

const char* describe(StrengthUse use) {
  switch (use) {
    case kBlendAndCurves: return "0 half effect, 16 full, 17..32 stronger";
    case kBlend: return "0 half effect, 16..32 full";
    case kOwn: return "0 faint, 16 full, 17..32 stronger";
    case kBlurLevel: return "0 none, 1..32 wider blur";
    case kUnused: return "not used";
  }
  return "";
}

}  // namespace lumora::tool
