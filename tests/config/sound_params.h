// What holds for the tuning values of every document.
#pragma once

#include <algorithm>
#include <cstring>

#include "config/filter_params.h"

namespace lumora::test {

inline bool areOnes(const std::uint8_t* begin, const std::uint8_t* end) {
  return std::all_of(begin, end, [](std::uint8_t byte) { return byte == 1; });
}

// The flag is 0 for a block in use and 1 for all others, and each curve is what its knots make, if
// the curves were stored at all.
inline bool isSound(const TuningBlock& block, BlockState state, const FilterParams& params) {
  if (params.bytes[block.offset] != (state == BlockState::kInUse ? 0 : 1)) return false;
  const std::uint8_t* const end = params.bytes + block.endOffset();
  const std::uint8_t* at = params.bytes + block.curveOffset();
  if (state != BlockState::kInUse && state != BlockState::kScalarOutOfRange) {
    return areOnes(at, end);
  }
  for (ToneCurve curve; at != end; at += sizeof curve) {
    std::memcpy(curve.bytes, at, sizeof curve);
    const ToneCurve again = ToneCurve::of(curve.knots());
    if (std::memcmp(curve.bytes, again.bytes, sizeof curve) != 0) return false;
  }
  return true;
}

// Every block is, and nothing is stored behind the last one.
inline bool areSound(const FilterParams& params, const TuningReport& report) {
  for (int i = 0; i < kTuningBlockCount; ++i) {
    if (!isSound(kTuningBlocks[i], report.blocks[i].state, params)) return false;
  }
  const int end = kTuningBlocks[kTuningBlockCount - 1].endOffset();
  return areOnes(params.bytes + end, params.bytes + sizeof params.bytes);
}

}  // namespace lumora::test
