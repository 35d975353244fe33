// The tuning blocks: where each lies in FilterParams, and what it holds. Which look has which
// stands in the facts of the modes.
#pragma once

#include <cstdint>
#include <iterator>

#include "modes/modes.h"
#include "pixels/tone_curve.h"

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
    {'A',   0, 1, 0, {}, nullptr, false},
    {'B',  25, 3, 0, {}, nullptr, false},
    {'C',  98, 3, 0, {}, nullptr, false},
    {'D', 171, 3, 0, {}, nullptr, false},
    {'E', 244, 0, 4, {{1, 255}, {2, 230}, {3, 172}, {4, 0}}, &kTintRule, false},
    {'F', 249, 3, 0, {}, nullptr, false},
    {'G', 322, 3, 0, {}, nullptr, false},
    {'H', 395, 3, 0, {}, nullptr, false},
    {'I', 468, 3, 2, {{4, 4}, {5, 2}}, &kGlowRule, false},
    {'J', 543, 3, 0, {}, nullptr, false},
    {'K', 616, 3, 0, {}, nullptr, false},
    {'L', 689, 3, 0, {}, nullptr, true},
    {'M', 762, 1, 0, {}, nullptr, true},
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
  const ModeFacts* const facts = findModeFacts(mode);
  if (facts == nullptr || facts->tuningGroup == 0) return nullptr;
  return &kTuningBlocks[facts->tuningGroup - 'A'];
}

// The mode of a block.
constexpr const ModeFacts& modeOf(const TuningBlock& block) {
  std::uint32_t mode = 1;
  while (kModes[mode - 1].tuningGroup != block.letter) ++mode;
  return kModes[mode - 1];
}

constexpr bool everyBlockHasItsMode() {
  for (int i = 0; i < kTuningBlockCount; ++i) {
    if (kTuningBlocks[i].letter != 'A' + i) return false;
    if (tuningBlockOf(modeOf(kTuningBlocks[i]).number) != &kTuningBlocks[i]) return false;
  }
  return true;
}
static_assert(everyBlockHasItsMode());

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
