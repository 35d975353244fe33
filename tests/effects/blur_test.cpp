// The circular focus blur as a whole.
#include "effects/focus_cases.h"

namespace lumora::test {
namespace {

FocusEffect blur(const BlurParam& circle) {
  return
      [circle](const Picture& picture, int level, const FilterAllocator& allocator,
               Threads threads) { return FilterBlur(picture, circle, level, allocator, threads); };
}

const BlurParam kCircle{50, 61, 20, 70};

TEST(Blur, EqualsThePlainSteps) {
  expectPlainSteps(blur(kCircle),
                   [](int width, int height) { return referenceCircle(width, height, kCircle); });
}

TEST(Blur, KeepsTheChromaOrder) { expectChromaOrderKept(blur(kCircle)); }

TEST(Blur, ReturnsEarly) { expectEarlyReturns(blur(kCircle)); }

TEST(Blur, AsksForMaskLevelsAndSmoothingWork) {
  expectMemory(blur(kCircle), {257 * 301 + 16, 3 * 257 * 301 + 16, 8 * 65 * 76 + 16},
               {255 * 301 + 16, 3 * 255 * 301 + 16});
}

TEST(Blur, ReportsWorkersThatDoNotStart) { expectThreadFaults(blur(kCircle)); }

TEST(Blur, LeavesPicturesInsideTheCircle) {
  TestAllocator allocator;
  for (const PixelFormat format : kFormats) {
    TestPicture picture(format, 300, 280, 9);
    const Bytes before = picture.snapshot();
    EXPECT_EQ(
        FilterBlur(picture.view(), {150, 140, 500, 600}, 3, *allocator.record(), Threads::kFour),
        Status::kOk);
    EXPECT_TRUE(picture.equals(before)) << picture.difference(before);
  }
}

TEST(Blur, LeavesPicturesOfOneColour) {
  TestAllocator allocator;
  for (const PixelFormat format : kFormats) {
    for (const int level : {1, 2, 3, 32}) {
      TestPicture picture(format, 320, 274);
      picture.fill(3, 254, 129);
      const Bytes before = picture.snapshot();
      EXPECT_EQ(FilterBlur(picture.view(), kCircle, level, *allocator.record(), Threads::kFour),
                Status::kOk);
      // Between its ends the mask's formula loses one from samples above 128.
      const Bytes mask = referenceCircle(320, 274, kCircle);
      for (std::size_t i = 0; i < before.size(); ++i) {
        const int lost = before[i] - picture.data()[i];
        ASSERT_TRUE(lost == 0 || (lost == 1 && before[i] > 128)) << "level " << level;
      }
      EXPECT_EQ(picture.data()[before.size() - 2], before[before.size() - 2]);
    }
  }
}

}  // namespace
}  // namespace lumora::test
