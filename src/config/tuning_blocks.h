// The tuning blocks: which look has one, where it lies in FilterParams, and what it holds.
#pragma once

#include <cstdint>
#include <iterator>

#include "looks/colour/tone_curve.h"
#include "lumora/filters.h"

namespace lumora {

// The tuning values of a handle: the blocks one behind the other. A block is a flag byte (0: the
// values behind it are in use; 1: the look's built-in ones), its scalars, and its ToneCurves.
// Bytes that nothing was stored in are 1.
struct FilterParams {
  std::uint8_t bytes[4096];
};

// A number of a block that is no curve.
struct ScalarKey {
  int param;  // its key is param<N>
  int defaultValue;
};

// The look accepts a block only if one value, made of its scalars, is right.
struct ScalarRule {
  int (*value)(const std::uint8_t* scalars);
  bool (*accepts)(int value);
  const char* valueText;
  const char* acceptedText;
};

inline constexpr ScalarRule kTintRule = {
    [](const std::uint8_t* scalars) -> int { return scalars[3]; },
    [](int value) { return value <= 18; }, "param4", "at most 18"};

// The accepted values are those within 12..60 that are 4 below a power of two.
inline constexpr ScalarRule kGlowRule = {
    [](const std::uint8_t* scalars) { return scalars[0] + 4 * scalars[1]; },
    [](int value) { return value == 12 || value == 28 || value == 60; }, "param4 + 4 x param5",
    "12, 28 or 60"};

struct TuningBlock {
  char letter;  // its keys are /Config/filter<letter>/param<N>
  int mode;
  const char* look;
  int offset;
  int curveCount;  // keys from param1 on
  int scalarCount;
  ScalarKey scalars[4];
  const ScalarRule* rule;  // null: any scalars will do
  // Above strength 16 the look ramps stored curves only and uses its own ones as they are. So a
  // document that holds the look's own curves changes its pictures.
  bool rampsStoredCurvesOnly;

  constexpr int scalarOffset() const { return offset + 1; }
  constexpr int curveOffset() const { return scalarOffset() + scalarCount; }
  constexpr int endOffset() const {
    return curveOffset() + curveCount * static_cast<int>(sizeof(ToneCurve));
  }
};

// In the order of the blocks in FilterParams, which is also the order of reading.
inline constexpr TuningBlock kTuningBlocks[] = {
    // clang-format off
    {'A', LUMORA_MODE_MORAN,            "MORAN",            0, 1, 0, {}, nullptr, false},
    {'B', LUMORA_MODE_RIXI,             "RIXI",            25, 3, 0, {}, nullptr, false},
    {'C', LUMORA_MODE_FUGU,             "FUGU",            98, 3, 0, {}, nullptr, false},
    {'D', LUMORA_MODE_VALENCIA,         "VALENCIA",       171, 3, 0, {}, nullptr, false},
    {'E', LUMORA_MODE_LAODIANYING,      "LAODIANYING",    244, 0, 4,
     {{1, 255}, {2, 230}, {3, 172}, {4, 0}}, &kTintRule, false},
    {'F', LUMORA_MODE_YUNDUAN,          "YUNDUAN",        249, 3, 0, {}, nullptr, false},
    {'G', LUMORA_MODE_NUANYANGYANG,     "NUANYANGYANG",   322, 3, 0, {}, nullptr, false},
    {'H', LUMORA_MODE_TIANMEIKEREN,     "TIANMEIKEREN",   395, 3, 0, {}, nullptr, false},
    {'I', LUMORA_MODE_MEISHIMENGHUAN,   "MEISHIMENGHUAN", 468, 3, 2,
     {{4, 4}, {5, 2}}, &kGlowRule, false},
    {'J', LUMORA_MODE_XPRO2,            "XPRO2",          543, 3, 0, {}, nullptr, false},
    {'K', LUMORA_MODE_HUDSON,           "HUDSON",         616, 3, 0, {}, nullptr, false},
    {'L', LUMORA_MODE_MYFAIR,           "MYFAIR",         689, 3, 0, {}, nullptr, true},
    {'M', LUMORA_MODE_LOFI,             "LOFI",           762, 1, 0, {}, nullptr, true},
    // clang-format on
};
inline constexpr int kTuningBlockCount = static_cast<int>(std::size(kTuningBlocks));

constexpr bool tuningBlocksAreContiguous() {
  int offset = 0;
  for (const TuningBlock& block : kTuningBlocks) {
    if (block.offset != offset) return false;
    offset = block.endOffset();
  }
  return offset == 787;
}
static_assert(kTuningBlockCount == 13 && tuningBlocksAreContiguous());

// The block of a mode, or null.
constexpr const TuningBlock* tuningBlockOf(std::uint32_t mode) {
  for (const TuningBlock& block : kTuningBlocks) {
    if (static_cast<std::uint32_t>(block.mode) == mode) return &block;
  }
  return nullptr;
}

// Where the block of a mode begins in FilterParams; -1 without one.
constexpr int tuningOffsetOf(std::uint32_t mode) {
  const TuningBlock* const block = tuningBlockOf(mode);
  return block != nullptr ? block->offset : -1;
}

// A key as text.
struct KeyPath {
  char text[sizeof "/Config/filterA/param1"];
};

constexpr KeyPath keyPath(const TuningBlock& block, int param) {
  KeyPath path = {"/Config/filterA/param1"};
  path.text[sizeof "/Config/filter" - 1] = block.letter;
  path.text[sizeof path.text - 2] = static_cast<char>('0' + param);
  return path;
}

}  // namespace lumora
