// No access outside the picture, the textures and the working memory, and no byte of a result that
// depends on the vector level or the count of threads: every mode and format at every size of a
// range. Pictures and blocks lie at inaccessible pages. The environment variable LUMORA_FULL_MATRIX
// asks for the large range.
#include <gtest/gtest.h>

#include <cstdlib>

#include "looks/texture/film_ageing.h"
#include "support/mode_calls.h"

namespace lumora::test {
namespace {

struct Range {
  int first, last;
};

Range widths() {
  if (std::getenv("LUMORA_FULL_MATRIX") != nullptr) return {88, 160};
  return {88, 103};  // every residue modulo 16
}
Range heights() {
  if (std::getenv("LUMORA_FULL_MATRIX") != nullptr) return {88, 100};
  return {88, 91};
}

class Guards : public testing::TestWithParam<Placement> {
 protected:
  // A handle's block has 24 bytes more than it uses, every other block 16.
  std::unique_ptr<TestHandle> makeHandle(TexturePath path, PixelSize picture) {
    allocator_.guardBlocks(GetParam(), 24);
    auto handle = std::make_unique<TestHandle>(allocator_, handleLayout(path, picture));
    allocator_.guardBlocks(GetParam(), 16);
    return handle;
  }

  // The levels take turns on four threads and on one.
  void runOnEveryLevel(ModeCall call, const TestHandle& handle, PixelSize size, int extra) {
    Bytes first;
    const SavedMarks marks(handle.view());
    for (const int level : supportedLevels()) {
      if (!dependsOnThreads(call.mode)) call.onCaller = !call.onCaller;
      const ForcedLevel forced(level);
      TestPicture picture(call.format, size.width, size.height, extra, 1, GetParam());
      const Bytes before = picture.snapshot();
      marks.restore();
      ASSERT_EQ(run(call, handle.get(), picture.image()), 0u);
      ASSERT_TRUE(picture.keepsBorders(before, keepsAlpha(call.mode)));
      if (first.empty()) first = picture.snapshot();
      ASSERT_EQ(picture.difference(first), kNone) << "level " << level;
      ++cases_;
    }
  }

  // The settings beside mode, format, path and size take turns.
  void runAllModes(PixelSize size) {
    const std::unique_ptr<TestHandle> prepared = makeHandle(TexturePath::kPrepared, size);
    for (ModeCall call : allModeCalls()) {
      const bool odd = size.width % 2 != 0 || size.height % 2 != 0;
      if (call.format != PixelFormat::kRgba && odd) continue;
      for (const TexturePath path : kTexturePaths) {
        if (path != TexturePath::kPrepared && !usesTexturePlanes(call.mode)) continue;
        static constexpr int kStrengths[] = {16, 3, 25};
        static constexpr int kExtraStrides[] = {0, 5, 32};
        call.path = path;
        call.onCaller = turn_ % 2 == 0;
        call.variant = turn_ / 2 % 2;
        call.strength = kStrengths[turn_ % 3];
        const int extra = kExtraStrides[turn_ / 3 % 3];
        ++turn_;
        SCOPED_TRACE(testing::Message() << describe(call) << ", " << size.width << " x "
                                        << size.height << ", stride + " << extra);
        const TestHandle& handle = path == TexturePath::kPrepared  ? *prepared
                                   : path == TexturePath::kUnsized ? *unsized_
                                                                   : *otherSize_;
        runOnEveryLevel(call, handle, size, extra);
      }
    }
  }

  TestAllocator allocator_;
  std::unique_ptr<TestHandle> unsized_ = makeHandle(TexturePath::kUnsized, {});
  std::unique_ptr<TestHandle> otherSize_ = makeHandle(TexturePath::kOtherSize, {88, 88});
  int turn_ = 0;
  int cases_ = 0;
};

TEST_P(Guards, NothingOutsideIsReadOrWrittenAtAnySize) {
  setFilmSeed(4711);
  for (int width = widths().first; width <= widths().last && !HasFailure(); ++width) {
    for (int height = heights().first; height <= heights().last; ++height) {
      runAllModes({width, height});
      ++turn_;
    }
  }
  // Large enough for the film's marks and for the blurs of large pictures.
  runAllModes({514, 362});
  unsized_.reset();
  otherSize_.reset();
  EXPECT_TRUE(allocator_.balanced());
  setFilmSeed({});
  RecordProperty("cases", cases_);
}

INSTANTIATE_TEST_SUITE_P(Placements, Guards,
                         testing::Values(Placement::kBeforePage, Placement::kAfterPage),
                         [](const auto& p) {
                           return p.param == Placement::kBeforePage ? "BeforeAPage" : "AfterAPage";
                         });

}  // namespace
}  // namespace lumora::test
