// What the two focus effects have in common, for their tests: each is told by its mask, the order
// of its blocks and its messages.
#pragma once

#include <gtest/gtest.h>

#include <functional>

#include "effects/focus.h"
#include "effects/pyramid_reference.h"
#include "support/captured_log.h"
#include "support/test_allocator.h"
#include "support/thread_faults.h"

namespace lumora::test {

using FocusEffect =
    std::function<Status(const Picture&, int level, const FilterAllocator&, Threads)>;
using FocusMask = std::function<Bytes(int width, int height)>;

struct FocusSize {
  PixelFormat format;
  int width, height;
  int level;
};

// Both smoothings, every scale, odd and even extents.
inline std::vector<FocusSize> focusSizes() {
#ifdef LUMORA_REDUCED_TESTS
  constexpr int kStep = 26;
#else
  constexpr int kStep = 7;
#endif
  std::vector<FocusSize> sizes;
  int level = 1;
  for (int width = 88; width <= 140; width += kStep) {
    for (const int height : {88, 107, 140}) {
      sizes.push_back({PixelFormat::kRgba, width, height, level});
      sizes.push_back({PixelFormat::kNv21, width & ~1, height & ~1, level});
      level = level % 4 + 1;
    }
  }
  for (const int blurLevel : {1, 2, 3, 32}) {
    sizes.push_back({PixelFormat::kRgba, 257, 269, blurLevel});
    sizes.push_back({PixelFormat::kNv12, 290, 256, blurLevel});
  }
  sizes.push_back({PixelFormat::kRgba, 255, 300, 3});
  return sizes;
}

// The same bytes as the plain steps, at every vector level, on four threads and on one.
inline void expectPlainSteps(const FocusEffect& effect, const FocusMask& mask) {
  TestAllocator allocator;
  for (const FocusSize& size : focusSizes()) {
    TestPicture expected(size.format, size.width, size.height, 3);
    referenceFocus(expected.view(), mask(size.width, size.height), size.level);
    for (const int level : supportedLevels()) {
      const ForcedLevel forced(level);
      for (const Threads threads : {Threads::kCaller, Threads::kFour}) {
        TestPicture picture(size.format, size.width, size.height, 3);
        ASSERT_EQ(effect(picture.view(), size.level, *allocator.record(), threads), Status::kOk);
        ASSERT_TRUE(picture.equals(expected.snapshot()))
            << size.width << " x " << size.height << ", level " << size.level << ": "
            << picture.difference(expected.snapshot());
      }
    }
  }
  EXPECT_TRUE(allocator.balanced());
}

// NV21 and NV12 pictures of the same colours stay pictures of the same colours.
inline void expectChromaOrderKept(const FocusEffect& effect) {
  TestAllocator allocator;
  TestPicture nv21(PixelFormat::kNv21, 300, 270), nv12(PixelFormat::kNv12, 300, 270);
  const auto swapped = [](Bytes bytes) {
    for (std::size_t i = 300 * 270; i < bytes.size(); i += 2) std::swap(bytes[i], bytes[i + 1]);
    return bytes;
  };
  nv12.assign(swapped(nv21.snapshot()));
  EXPECT_EQ(effect(nv21.view(), 3, *allocator.record(), Threads::kFour), Status::kOk);
  EXPECT_EQ(effect(nv12.view(), 3, *allocator.record(), Threads::kFour), Status::kOk);
  EXPECT_TRUE(nv12.equals(swapped(nv21.snapshot())));
}

// Level 0 does nothing, not even check; small pictures are refused; nothing is asked for.
inline void expectEarlyReturns(const FocusEffect& effect) {
  TestAllocator allocator;
  const CapturedLog log;
  for (const Threads threads : {Threads::kCaller, Threads::kFour}) {
    TestPicture small(PixelFormat::kRgba, 64, 100), large(PixelFormat::kNv12, 90, 100);
    const Bytes smallBefore = small.snapshot(), largeBefore = large.snapshot();
    EXPECT_EQ(effect(small.view(), 0, *allocator.record(), threads), Status::kOk);
    EXPECT_EQ(effect(small.view(), 3, *allocator.record(), threads), Status::kBadArgument);
    EXPECT_EQ(effect(large.view(), 0, *allocator.record(), threads), Status::kOk);
    EXPECT_TRUE(small.equals(smallBefore) && large.equals(largeBefore));
  }
  EXPECT_TRUE(allocator.requests().empty());
  EXPECT_TRUE(log.lines().empty());
}

// Every block is 16 bytes larger than needed; each of them failing leaves the picture alone.
inline void expectMemory(const FocusEffect& effect, const std::vector<std::uint32_t>& large,
                         const std::vector<std::uint32_t>& small) {
  TestAllocator allocator;
  TestPicture smallPicture(PixelFormat::kRgba, 255, 301);
  EXPECT_EQ(effect(smallPicture.view(), 3, *allocator.record(), Threads::kFour), Status::kOk);
  EXPECT_EQ(allocator.requests(), small);
  allocator.clearRequests();
  TestPicture picture(PixelFormat::kRgba, 257, 301);
  EXPECT_EQ(effect(picture.view(), 3, *allocator.record(), Threads::kFour), Status::kOk);
  EXPECT_EQ(allocator.requests(), large);
  const Bytes before = picture.snapshot();
  for (int n = 1; n <= static_cast<int>(large.size()); ++n) {
    for (const Threads threads : {Threads::kCaller, Threads::kFour}) {
      const CapturedLog log;
      allocator.failAt(n);
      EXPECT_EQ(effect(picture.view(), 3, *allocator.record(), threads), Status::kNoMemory) << n;
      EXPECT_EQ(log.errors(), std::vector<std::string>{"[%s] can't malloc enough memory!\n"}) << n;
      EXPECT_TRUE(picture.equals(before)) << n;
      EXPECT_TRUE(allocator.balanced()) << n;
    }
  }
}

// Without a worker of the reduction the picture is untouched; without one of the growth only its
// stripe is.
inline void expectThreadFaults(const FocusEffect& effect) {
  struct Case {
    PixelFormat format;
    const char* reduction;
    const char* growth;
  };
  for (const Case& c :
       {Case{PixelFormat::kRgba, "[%s] DownSampleRGBA2RGB_multiThread failed!\n",
             "[%s] ImUpScaleRGBA_multiThread return ERROR!\n"},
        {PixelFormat::kNv12, "[%s] DownSampleNV21_NV12_firstLevel_multiThread failed!\n",
         "[%s] ImUpScaleNV21_NV12_multiThread return ERROR!\n"}}) {
    TestAllocator allocator;
    TestPicture whole(c.format, 120, 96);
    const Bytes before = whole.snapshot();
    EXPECT_EQ(effect(whole.view(), 1, *allocator.record(), Threads::kFour), Status::kOk);
    for (unsigned start = 0; start < 8; ++start) {
      TestPicture picture(c.format, 120, 96);
      const CapturedLog log;
      const ThreadFaults faults(1u << start);
      EXPECT_EQ(effect(picture.view(), 1, *allocator.record(), Threads::kFour),
                Status::kThreadFailed);
      EXPECT_EQ(log.errors(),
                (std::vector<std::string>{kThreadFailure, "[%s]  Error threadID = %d!",
                                          start < 4 ? c.reduction : c.growth}));
      const Bytes after = picture.snapshot();
      const std::ptrdiff_t stride = picture.view().strideBytes;
      for (int y = 0; y < 96; ++y) {
        const bool untouched = start < 4 || y / 24 == static_cast<int>(start) - 4;
        const Bytes& expected = untouched ? before : whole.snapshot();
        ASSERT_TRUE(std::equal(after.begin() + y * stride, after.begin() + (y + 1) * stride,
                               expected.begin() + y * stride))
            << "start " << start << ", row " << y;
      }
      EXPECT_TRUE(allocator.balanced());
    }
  }
}

}  // namespace lumora::test
