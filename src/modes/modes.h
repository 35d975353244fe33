// The facts of the twenty modes: one row each, from which the library, the tool, the documentation
// and every other way in take them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "lumora/filters.h"
#include "modes/joined_text.h"

namespace lumora {

// What the strength does.
enum class StrengthUse : std::uint8_t {
  kBlendAndCurves,  // below full strength blended with the untouched picture, above it stronger
  kBlend,           // below full strength blended, from there on alike
  kOwn,             // the whole range steers the effect itself
  kBlurLevel,       // how wide the blur is, 0 for none
  kUnused
};

// The texts that name limits, in the limits' own numbers.
namespace mode_texts {

inline constexpr JoinedText kFullAndStronger = joined(
    LUMORA_FULL_STRENGTH, " full, ", LUMORA_FULL_STRENGTH + 1, "..", LUMORA_STRONGEST, " stronger");
inline constexpr JoinedText kBlendAndCurves = joined("0 half effect, ", kFullAndStronger.text);
inline constexpr JoinedText kBlend =
    joined("0 half effect, ", LUMORA_FULL_STRENGTH, "..", LUMORA_STRONGEST, " full");
inline constexpr JoinedText kOwn = joined("0 faint, ", kFullAndStronger.text);
inline constexpr JoinedText kBlurLevel = joined("0 none, 1..", LUMORA_STRONGEST, " wider blur");

inline constexpr JoinedText kMosaicSides =
    joined(LUMORA_SHORTEST_MOSAIC_SIDE, "..", LUMORA_LONGEST_MOSAIC_SIDE);
inline constexpr JoinedText kRect = joined("the rectangle, even numbers, sides ", kMosaicSides.text,
                                           ";\ndefault: the middle half of the picture");
inline constexpr JoinedText kBlock =
    joined("edge of one block, ", kMosaicSides.text,
           "; default: a twelfth of the\nrectangle's shorter side, at least ",
           LUMORA_SHORTEST_MOSAIC_SIDE);
inline constexpr JoinedText kCoreValue = joined("0..", LUMORA_STRONGEST);
inline constexpr JoinedText kCore = joined("entirely sharp share of the band, in 1/",
                                           LUMORA_STRONGEST, "; default ", LUMORA_STRONGEST / 2);

}  // namespace mode_texts

constexpr const char* describe(StrengthUse use) {
  switch (use) {
    case StrengthUse::kBlendAndCurves: return mode_texts::kBlendAndCurves.text;
    case StrengthUse::kBlend: return mode_texts::kBlend.text;
    case StrengthUse::kOwn: return mode_texts::kOwn.text;
    case StrengthUse::kBlurLevel: return mode_texts::kBlurLevel.text;
    case StrengthUse::kUnused: break;
  }
  return "not used";
}

// The images of the texture pack, in the order in which they lie in it.
enum PackSlot : std::uint8_t {
  kSlotShade,
  kSlotLeak0,  // direction 0; the three after it are for directions 1 to 3
  kSlotLeak1,
  kSlotLeak2,
  kSlotLeak3,
  kSlotClouds,
  kSlotVignette,
  kSlotEdgeBurn,
  kSlotLamp,
  kSlotDusk,
  kSlotFalloff,
  kSlotGrain,
  kSlotBlotch,
  kSlotSpeck,
  kPackImageCount
};

// What a mode takes from the pack.
struct TextureUse {
  const char* words;         // null for nothing
  int plane;                 // the first plane of a handle that holds it
  PackSlot slot;             // of the texture that the look itself blends
  PackSlot furtherSlots[3];  // as many as furtherSlotCount
  int furtherSlotCount;

  constexpr explicit operator bool() const { return words != nullptr; }
  constexpr bool takes(int other) const {
    if (words == nullptr) return false;
    if (slot == other) return true;
    for (int i = 0; i < furtherSlotCount; ++i) {
      if (furtherSlots[i] == other) return true;
    }
    return false;
  }
};

// What a mode reads of its call beside strength and threads.
enum Setting : std::uint8_t {
  kDirection,
  kRect,
  kBlock,
  kColour,
  kPick,
  kTolerance,
  kMask,
  kCentre,
  kRadius,
  kBand,
  kCore,
  kSettingCount
};

struct SettingFacts {
  const char* name;   // as typed: --rect
  const char* value;  // what it looks like: "X,Y,W,H"
  int numbers;        // how many numbers it consists of, 0 if it is something else
  int lowest;         // of each number
  int highest;
  int standard;      // its default; kNoStandard: `help` says which
  const char* help;  // lines joined by line breaks
};
inline constexpr int kNoStandard = -1;
inline constexpr int kAnyPlace = 1 << 30;  // positions may lie outside the picture, either way

inline constexpr std::array<SettingFacts, kSettingCount> kSettings{{
    {"direction", "0..3", 1, 0, 3, 0,
     "how the camera was held, in quarter turns; the light\nleak turns with it; default 0"},
    {"rect", "X,Y,W,H", 4, 0, LUMORA_LONGEST_SIDE, kNoStandard, mode_texts::kRect.text},
    {"block", "N", 1, LUMORA_SHORTEST_MOSAIC_SIDE, LUMORA_LONGEST_MOSAIC_SIDE, kNoStandard,
     mode_texts::kBlock.text},
    {"colour", "'#rrggbb'", 0, 0, 0, kNoStandard, "the colour that stays"},
    {"pick", "X,Y", 2, 0, LUMORA_LONGEST_SIDE, kNoStandard,
     "take the colour from this place of the picture"},
    {"tolerance", "0..255", 1, 0, 255, 20, "how far a hue may be off (of 255); default 20"},
    {"mask", "FILE", 0, 0, 0, kNoStandard, "picture that is not black where colour may stay"},
    {"centre", "X,Y", 2, -kAnyPlace, kAnyPlace, kNoStandard,
     "the sharp circle's centre; default: the middle"},
    {"radius", "INNER,OUTER", 2, 0, kAnyPlace, kNoStandard,
     "sharp up to INNER, fully blurred from OUTER on;\n"
     "default: a quarter and half of the shorter side"},
    {"band", "X1,Y1,X2,Y2", 4, -kAnyPlace, kAnyPlace, kNoStandard,
     "two points on the edges of the sharp band,\n"
     "which stands at right angles on the line between them;\n"
     "default: level, from 2/5 to 4/5 of the height"},
    {"core", mode_texts::kCoreValue.text, 1, 0, LUMORA_STRONGEST, LUMORA_STRONGEST / 2,
     mode_texts::kCore.text},
}};

struct ModeFacts {
  std::uint32_t number;
  const char* name;   // as typed and listed; messages have it in capitals
  const char* alias;  // what it may be called in English; null where the name is English
  const char* kind;
  const char* summary;
  StrengthUse strength;
  TextureUse texture;
  char tuningGroup;        // its values are under /Config/filter<letter>; 0 without any
  std::uint32_t settings;  // bits: 1 << Setting
  bool albumOnly;          // filterProcess refuses it
  bool rgbaOnly;

  constexpr bool reads(Setting setting) const { return (settings >> setting & 1) != 0; }
  // Whether strengths below the full one mix the result with the untouched picture.
  constexpr bool isBlended() const {
    return strength == StrengthUse::kBlendAndCurves || strength == StrengthUse::kBlend;
  }
};

namespace mode_rows {

using enum StrengthUse;

inline constexpr TextureUse kNoTexture{};

constexpr TextureUse texture(const char* words, int plane, PackSlot slot) {
  return {words, plane, slot, {}, 0};
}

template <class... Settings>
constexpr std::uint32_t settings(Settings... each) {
  return (std::uint32_t{0} | ... | (std::uint32_t{1} << each));
}

inline constexpr std::array kModes{
    // clang-format off
    ModeFacts{LUMORA_MODE_MORAN, "moran", "pale-grey", "monochrome",
              "bright grey with lifted shadows", kBlendAndCurves, kNoTexture, 'A', 0, false, false},
    ModeFacts{LUMORA_MODE_RIXI, "rixi", "sunny-day", "colour curves",
              "cool and faded", kBlendAndCurves, kNoTexture, 'B', 0, false, false},
    ModeFacts{LUMORA_MODE_FUGU, "fugu", "retro", "colour curves",
              "blue-green shadows under yellow lights", kBlendAndCurves, kNoTexture, 'C', 0, false,
              false},
    ModeFacts{LUMORA_MODE_VALENCIA, "valencia", nullptr, "colour curves",
              "lifted shadows, a touch of green", kBlendAndCurves, kNoTexture, 'D', 0, false,
              false},
    ModeFacts{LUMORA_MODE_LAODIANYING, "laodianying", "old-film", "aged film",
              "tinted grey with grain, blotches and specks", kBlendAndCurves,
              {"shade, grain, marks", 0, kSlotShade, {kSlotGrain, kSlotBlotch, kSlotSpeck}, 3},
              'E', 0, false, false},
    ModeFacts{LUMORA_MODE_LIANGHONG, "lianghong", "light-leak", "texture",
              "a coloured light leak", kBlendAndCurves,
              {"light leak", 1, kSlotLeak0, {kSlotLeak1, kSlotLeak2, kSlotLeak3}, 3},
              0, settings(kDirection), false, false},
    ModeFacts{LUMORA_MODE_YUNDUAN, "yunduan", "clouds", "texture",
              "soft clouds of light and colour curves", kBlendAndCurves,
              texture("clouds", 4, kSlotClouds), 'F', 0, false, false},
    ModeFacts{LUMORA_MODE_EARLYBIRD, "earlybird", nullptr, "texture",
              "colours that fade towards the corners", kBlendAndCurves,
              texture("vignette", 5, kSlotVignette), 0, 0, false, false},
    ModeFacts{LUMORA_MODE_NUANYANGYANG, "nuanyangyang", "warm-sun", "colour curves",
              "warm yellow sunlight", kBlendAndCurves, kNoTexture, 'G', 0, false, false},
    ModeFacts{LUMORA_MODE_TIANMEIKEREN, "tianmeikeren", "sweet", "colour curves",
              "pale and rosy", kBlendAndCurves, kNoTexture, 'H', 0, false, false},
    ModeFacts{LUMORA_MODE_MEISHIMENGHUAN, "meishimenghuan", "dreamy-glow", "glow",
              "a dreamy glow, deeper contrast", kOwn, kNoTexture, 'I', 0, false, false},
    ModeFacts{LUMORA_MODE_HEIBAI, "heibai", "black-and-white", "monochrome",
              "plain black and white", kBlend, kNoTexture, 0, 0, false, false},
    ModeFacts{LUMORA_MODE_XPRO2, "xpro2", "cross-process", "texture",
              "dark corners and crossed colour curves", kBlendAndCurves,
              texture("vignette", 6, kSlotEdgeBurn), 'J', 0, false, false},
    ModeFacts{LUMORA_MODE_HUDSON, "hudson", nullptr, "texture",
              "an overlaid vignette and colour curves", kBlendAndCurves,
              texture("vignette", 7, kSlotLamp), 'K', 0, false, false},
    ModeFacts{LUMORA_MODE_MYFAIR, "myfair", nullptr, "texture",
              "lifted colours and a soft vignette", kBlendAndCurves,
              texture("vignette", 8, kSlotDusk), 'L', 0, false, false},
    ModeFacts{LUMORA_MODE_LOFI, "lofi", nullptr, "texture",
              "more contrast, falling shadows", kBlendAndCurves,
              texture("vignette", 9, kSlotFalloff), 'M', 0, false, false},
    ModeFacts{LUMORA_MODE_MOSAIC, "mosaic", nullptr, "region",
              "turns a rectangle into square blocks", kBlend, kNoTexture, 0,
              settings(kRect, kBlock), false, false},
    ModeFacts{LUMORA_MODE_COLOUR_FIX, "colour-fix", nullptr, "colour",
              "keeps one colour and greys the rest", kUnused, kNoTexture, 0,
              settings(kColour, kPick, kTolerance, kMask), true, true},
    ModeFacts{LUMORA_MODE_BLUR, "blur", nullptr, "focus",
              "blurs everything outside a circle", kBlurLevel, kNoTexture, 0,
              settings(kCentre, kRadius), true, false},
    ModeFacts{LUMORA_MODE_TILT_SHIFT, "tilt-shift", nullptr, "focus",
              "blurs everything outside a band", kBlurLevel, kNoTexture, 0,
              settings(kBand, kCore), true, false},
    // clang-format on
};

constexpr bool areNumberedInOrder() {
  for (std::size_t i = 0; i < kModes.size(); ++i) {
    if (kModes[i].number != i + 1) return false;
  }
  return true;
}
static_assert(areNumberedInOrder());

}  // namespace mode_rows

// Row i is mode i + 1.
inline constexpr auto& kModes = mode_rows::kModes;
inline constexpr std::uint32_t kModeCount = kModes.size();

// The facts of a mode, null for a number that is none.
constexpr const ModeFacts* findModeFacts(std::uint32_t mode) {
  return mode >= 1 && mode <= kModeCount ? &kModes[mode - 1] : nullptr;
}

// A name in capitals, as messages have it.
struct Capitals {
  char text[24];
};
constexpr Capitals capitals(const char* name) {
  Capitals result{};
  for (int i = 0; name[i] != '\0' && i + 1 < static_cast<int>(sizeof result.text); ++i) {
    const bool isLower = name[i] >= 'a' && name[i] <= 'z';
    result.text[i] = isLower ? static_cast<char>(name[i] - 'a' + 'A') : name[i];
  }
  return result;
}

// A texture look: a handle made for one of them refuses the others.
constexpr bool usesTexture(std::uint32_t mode) {
  const ModeFacts* const facts = findModeFacts(mode);
  return facts != nullptr && facts->texture;
}

}  // namespace lumora
