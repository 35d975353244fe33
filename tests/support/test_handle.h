// Handles made by hand, for tests that need no resource files.
#pragma once

#include <algorithm>
#include <vector>

#include "resources/handle_layout.h"
#include "support/test_allocator.h"
#include "support/test_picture.h"

namespace lumora::test {

// A handle whose textures are noise at the given size; all looks use their built-in values.
class TestHandle {
 public:
  struct Layout {
    std::uint32_t mode = LUMORA_MODE_ANY;
    PixelSize textureSize = {96, 88};
    bool prepared = true;
  };
  TestHandle(TestAllocator& allocator, const Layout& layout) {
    const SmallTextureSizes small =
        layout.prepared ? smallTextureSizes(layout.textureSize.width, layout.textureSize.height)
                        : kStoredSmallTextures;
    const std::uint64_t bytes = handleBytes(layout.textureSize, small);
    handle_ = static_cast<FilterHandle*>(requestFromHost(*allocator.record(), bytes));
    FilterHandleView view(handle_);
    view.allocator() = *allocator.record();
    view.header() = {};
    view.header().setTextureSize(static_cast<std::uint32_t>(layout.textureSize.width),
                                 static_cast<std::uint32_t>(layout.textureSize.height));
    view.header().mode() = static_cast<std::uint8_t>(layout.mode);
    view.header().prepared() = layout.prepared;
    std::fill_n(view.params(), kFilterParamsBytes, std::uint8_t{1});
    const auto textureBytes =
        static_cast<std::size_t>(kPlaneCount * layout.textureSize.pixels() + small.bytes());
    const Bytes texels = noiseBytes(textureBytes, 77);
    std::copy(texels.begin(), texels.end(), view.plane(0));
    allocator.clearRequests();
  }
  ~TestHandle() { filterDestroy(&handle_); }
  TestHandle(const TestHandle&) = delete;
  TestHandle& operator=(const TestHandle&) = delete;

  FilterHandle* get() const { return handle_; }
  FilterHandle*& variable() { return handle_; }
  FilterHandleView view() const { return FilterHandleView(handle_); }

 private:
  FilterHandle* handle_;
};

}  // namespace lumora::test
