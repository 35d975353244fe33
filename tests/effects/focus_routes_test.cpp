// Modes 11, 19 and 20 as a host calls them: memory, messages, status.
#include <gtest/gtest.h>

#include "effects/pyramid_reference.h"
#include "support/captured_log.h"
#include "support/test_handle.h"
#include "support/thread_faults.h"

namespace lumora::test {
namespace {

using Texts = std::vector<std::string>;

std::uint32_t processForAlbum(const TestHandle& handle, const TestPicture& picture,
                              std::uint32_t mode, int strength, bool singleThread) {
  FilterAlbumParam album{};
  album.stProcess.eMode = mode;
  album.stProcess.effectRatio = strength;
  album.stProcess.singleThread = singleThread;
  album.stBlur = {60, 44, 10, 30};
  album.stTiltShift = {20, 30, 50, 60, 8};
  const FilterImage image = picture.image();
  return filterProcess_for_album(handle.get(), &image, &album);
}

TEST(FocusRoutes, TheStrengthIsTheBlurLevel) {
  TestAllocator allocator;
  const TestHandle handle(allocator, {});
  for (const bool isBand : {false, true}) {
    for (const int level : {0, 3}) {
      TestPicture picture(PixelFormat::kRgba, 120, 90), expected(PixelFormat::kRgba, 120, 90);
      const Bytes mask = isBand ? referenceBand(120, 90, {20, 30, 50, 60, 8})
                                : referenceCircle(120, 90, {60, 44, 10, 30});
      if (level > 0) referenceFocus(expected.view(), mask, level);
      const std::uint32_t mode = isBand ? LUMORA_MODE_TILT_SHIFT : LUMORA_MODE_BLUR;
      EXPECT_EQ(processForAlbum(handle, picture, mode, level, false), 0u);
      EXPECT_TRUE(picture.equals(expected.snapshot())) << mode << ", level " << level;
    }
  }
}

// A handle of the picture's size has the glow's memory; any other call asks for it.
TEST(FocusRoutes, TheGlowUsesTheHandlesPlanesWhereTheyFit) {
  TestAllocator allocator;
  const TestHandle handle(allocator, {});
  TestPicture fitting(PixelFormat::kRgba, 96, 88), other(PixelFormat::kRgba, 88, 96);
  const FilterHandleView view = handle.view();
  const Bytes before(view.plane(0), view.plane(kPlaneCount));
  EXPECT_EQ(processForAlbum(handle, fitting, LUMORA_MODE_MEISHIMENGHUAN, 16, false), 0u);
  EXPECT_TRUE(allocator.requests().empty());
  EXPECT_TRUE(std::equal(view.plane(0), view.plane(kScratchPlane), before.begin()));
  EXPECT_TRUE(std::equal(view.plane(13), view.plane(kPlaneCount), before.begin() + 13 * 96 * 88));
  EXPECT_EQ(processForAlbum(handle, other, LUMORA_MODE_MEISHIMENGHUAN, 16, false), 0u);
  EXPECT_EQ(allocator.requests(), std::vector<std::uint32_t>{3 * 96 * 88 + 16});

  for (const bool singleThread : {false, true}) {
    const Bytes untouched = other.snapshot();
    const CapturedLog log;
    allocator.failAt(1);
    EXPECT_EQ(processForAlbum(handle, other, LUMORA_MODE_MEISHIMENGHUAN, 16, singleThread), 512u);
    ASSERT_EQ(log.lines().size(), 2u);
    EXPECT_EQ(log.lines()[0].text, singleThread
                                       ? "[FILTER_LOG] can't malloc enough memory!\n"
                                       : "[FILTER_LOG] can't malloc enough memory [size=25344]!\n");
    EXPECT_TRUE(other.equals(untouched));
  }
}

struct FailureCase {
  std::uint32_t mode;
  PixelFormat format;
  bool singleThread;
  const char* message;
};

TEST(FocusRoutes, FailuresAreReportedUnderTheirNames) {
  TestAllocator allocator;
  const TestHandle handle(allocator, {});
  const FailureCase cases[] = {
      {11, PixelFormat::kRgba, false, "[%s] FilterMeishimenghuan_RGBA MEISHIMENGHUAN failed!\n"},
      {11, PixelFormat::kNv21, false, "[%s] FilterMeishimenghuan_NV21 MEISHIMENGHUAN failed!\n"},
      {11, PixelFormat::kNv12, false, "[%s] FilterMeishimenghuan_NV12 MEISHIMENGHUAN failed!\n"},
      {19, PixelFormat::kRgba, false, "[%s] FilterBlur_RGBA failed!\n"},
      {19, PixelFormat::kNv21, false, "[%s] FilterBlur_NV21_NV12_multiThread failed!\n"},
      {19, PixelFormat::kNv12, false, "[%s] FilterBlur_NV21_NV12_multiThread failed!\n"},
      {19, PixelFormat::kRgba, true, "[%s] FilterBlur_RGBA failed!\n"},
      {19, PixelFormat::kNv21, true, "[%s] FilterBlur_NV21_NV12 failed!\n"},
      {19, PixelFormat::kNv12, true, "[%s] FilterBlur_NV21_NV12 failed!\n"},
      {20, PixelFormat::kRgba, false, "[%s] FilterTiltshift_RGBA_multiThread failed!\n"},
      {20, PixelFormat::kNv21, false, "[%s] FilterTiltshift_NV21_NV12_multiThread failed!\n"},
      {20, PixelFormat::kNv12, false, "[%s] FilterTiltshift_NV21_NV12_multiThread failed!\n"},
      {20, PixelFormat::kRgba, true, "[%s] FilterTiltshift_RGBA failed!\n"},
      {20, PixelFormat::kNv21, true, "[%s] FilterTiltshift_NV21_NV12 failed!\n"},
      {20, PixelFormat::kNv12, true, "[%s] FilterTiltshift_NV21_NV12 failed!\n"},
  };
  for (const FailureCase& c : cases) {
    const TestPicture picture(c.format, 96, 88);
    const CapturedLog log;
    const ThreadFaults faults(c.mode == 11 ? 0b0001'0000'0000u : 0u);  // of the curve stage
    if (c.mode != 11) allocator.failAt(1);
    EXPECT_EQ(processForAlbum(handle, picture, c.mode, 16, c.singleThread),
              c.mode == 11 ? 4096u : 512u);
    const Texts errors = log.errors();
    ASSERT_GE(errors.size(), 3u);
    EXPECT_EQ(errors[errors.size() - 2], c.message);
    EXPECT_EQ(errors.back(), "[%s] process failed!\n");
  }
  EXPECT_EQ(allocator.liveBlocks(), 1);
}

}  // namespace
}  // namespace lumora::test
