// Valid calls of every mode, for tests that go through all of them.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "support/test_handle.h"
#include "support/test_picture.h"

namespace lumora::test {

// Where a call's textures come from.
enum class TexturePath {
  kPrepared,  // the handle holds them at the picture's size
  kUnsized,   // resampled for the call from the pack's own sizes
  kOtherSize  // resampled for the call from those of another picture's size
};
inline constexpr TexturePath kTexturePaths[] = {TexturePath::kPrepared, TexturePath::kUnsized,
                                                TexturePath::kOtherSize};

struct ModeCall {
  std::uint32_t mode;
  PixelFormat format;
  TexturePath path = TexturePath::kPrepared;
  bool onCaller = false;
  int strength = 16;
  int variant = 0;  // of mosaic rectangles, masks, circles and bands
};

// Every mode with every format that it takes.
std::vector<ModeCall> allModeCalls();

// The textures that the call's handle has for a picture of this size.
TestHandle::Layout handleLayout(TexturePath path, PixelSize picture);

// Whether the handle's textures (or its scratch planes) have a part in the mode.
bool usesTexturePlanes(std::uint32_t mode);
// Blur and tilt-shift take a level for a strength, and nothing is blended.
inline bool isLevel(const ModeCall& call) {
  return findModeFacts(call.mode)->strength == StrengthUse::kBlurLevel;
}
// How many variants of its settings a mode has.
inline int variantsOf(std::uint32_t mode) {
  return findModeFacts(mode)->settings >> kRect != 0 ? 2 : 1;
}
// Colour fix alone: its single- and four-threaded forms may differ.
inline bool dependsOnThreads(std::uint32_t mode) { return mode == LUMORA_MODE_COLOUR_FIX; }
// Mosaic alone moves alpha, inside its rectangle.
inline bool keepsAlpha(std::uint32_t mode) { return mode != LUMORA_MODE_MOSAIC; }

// Settings that suit a picture of this size; the record of a mask is borrowed from static memory.
FilterAlbumParam paramFor(const ModeCall& call, PixelSize picture);

// The call itself, through filterProcess where that knows the mode.
std::uint32_t run(const ModeCall& call, FilterHandle* handle, const FilterImage& image);

// The film look rewrites its two small textures in a prepared handle: they are the next call's
// marks. This puts those back that the handle held at first.
class SavedMarks {
 public:
  explicit SavedMarks(const FilterHandleView& view)
      : view_(view), marks_(view.blotch(), view.blotch() + view.smallTextures().bytes()) {}
  void restore() const { std::copy(marks_.begin(), marks_.end(), view_.blotch()); }

 private:
  FilterHandleView view_;
  std::vector<std::uint8_t> marks_;
};

std::string modeName(const ModeCall& call);  // with the format
std::string pathName(TexturePath path);
std::string describe(const ModeCall& call);

}  // namespace lumora::test
