// The tilt-shift as a whole.
#include "effects/focus_cases.h"

namespace lumora::test {
namespace {

FocusEffect tiltShift(const TiltShiftParam& tilt) {
  return
      [tilt](const Picture& picture, int level, const FilterAllocator& allocator, Threads threads) {
        return FilterTiltshift(picture, tilt, level, allocator, threads);
      };
}

const TiltShiftParam kSlanted{30, 20, 70, 60, 12};

TEST(TiltShift, EqualsThePlainSteps) {
  for (const TiltShiftParam& tilt : {kSlanted, TiltShiftParam{0, 30, 0, 80, 16}}) {
    expectPlainSteps(tiltShift(tilt),
                     [&](int width, int height) { return referenceBand(width, height, tilt); });
  }
}

TEST(TiltShift, KeepsTheChromaOrder) { expectChromaOrderKept(tiltShift(kSlanted)); }

TEST(TiltShift, ReturnsEarly) { expectEarlyReturns(tiltShift(kSlanted)); }

TEST(TiltShift, AsksForLevelsMaskAndSmoothingWork) {
  expectMemory(tiltShift(kSlanted), {3 * 257 * 301 + 16, 257 * 301 + 16, 8 * 65 * 76 + 16},
               {3 * 255 * 301 + 16, 255 * 301 + 16});
}

TEST(TiltShift, ReportsWorkersThatDoNotStart) {
  expectThreadFaults(tiltShift({150, 150, 150, 150, 0}));
}

}  // namespace
}  // namespace lumora::test
