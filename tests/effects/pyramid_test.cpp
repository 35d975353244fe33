// The steps of the pyramid against the plain ones, at every vector level and thread count.
#include <gtest/gtest.h>

#include "effects/pyramid/down_sample.h"
#include "effects/pyramid/pyramid_memory.h"
#include "effects/pyramid/up_scale.h"
#include "effects/pyramid_reference.h"
#include "effects/smoothing/binomial_blur.h"
#include "support/everywhere.h"

namespace lumora::test {
namespace {

struct PictureSize {
  PixelFormat format;
  int width, height;
  int levels;
};

// Both parities of every level up to the third, and the glow's deepest reductions.
std::vector<PictureSize> pictureSizes() {
  std::vector<PictureSize> sizes;
  int levels = 1;
  for (int width = 88; width <= 140; width += (kReduced ? 17 : 3)) {
    for (const int height : {88, 89, 91, 103, 121, 128, 139}) {
      sizes.push_back({PixelFormat::kRgba, width, height, levels});
      sizes.push_back({PixelFormat::kNv12, width & ~1, height & ~1, levels});
      levels = levels % 3 + 1;
    }
  }
  sizes.push_back({PixelFormat::kRgba, 1061, 1025, 5});
  sizes.push_back({PixelFormat::kNv21, 1026, 1038, 5});
  return sizes;
}

TEST(Pyramid, ReducesLikeThePlainSteps) {
  for (const PictureSize& size : pictureSizes()) {
    const TestPicture picture(size.format, size.width, size.height, 5);
    const Planes expected = referenceReduce(picture.view(), size.levels);
    expectEverywhere(picture, picture, [&](const Picture& copy, Threads threads) {
      Bytes block(3 * static_cast<std::size_t>(size.width) * size.height);
      const PyramidMemory memory(copy, size.levels, block.data());
      const Status status = DownSample(copy, size.levels, memory.reduced, memory.rows, threads);
      EXPECT_TRUE(std::equal(expected.bytes.begin(), expected.bytes.end(), memory.reduced.data))
          << picture.description() << ", level " << size.levels;
      return status;
    });
  }
}

// Some vectors hold nothing but one end of the scale, or nothing but its neighbour, others any
// value or a mixture of both ends and any value.
Bytes mixedMask(int width, int height) {
  Bytes mask(static_cast<std::size_t>(width * height));
  Noise noise(5);
  for (std::size_t i = 0; i < mask.size(); ++i) {
    const std::uint8_t any = noise.byte();
    const std::uint8_t choices[] = {0, 255, any, 1, 254};
    const std::size_t stretch = i / 97 % 6;
    mask[i] = choices[stretch == 5 ? noise.next() % 3 : stretch];
  }
  return mask;
}

struct PlaneRows final : MaskRows {
  const Bytes& plane;
  int width;
  PlaneRows(const Bytes& all, int rowWidth) : plane(all), width(rowWidth) {}
  void fillRow(int y, std::uint8_t* out) const override {
    std::copy_n(plane.begin() + std::ptrdiff_t{y} * width, width, out);
  }
};

TEST(Pyramid, GrowsLikeThePlainSteps) {
  for (const PictureSize& size : pictureSizes()) {
    const TestPicture picture(size.format, size.width, size.height, 3);
    const Planes small =
        noisePlanes(levelExtent(size.width, size.levels), levelExtent(size.height, size.levels), 9);
    for (const Bytes& mask : {mixedMask(size.width, size.height), Bytes()}) {
      const TestPicture expected(picture);
      referenceGrow(small, size.levels, expected.view(), mask, 19);
      expectEverywhere(picture, expected, [&](const Picture& copy, Threads threads) {
        Bytes block(3 * static_cast<std::size_t>(size.width) * size.height);
        const PyramidMemory memory(copy, size.levels, block.data());
        std::copy(small.bytes.begin(), small.bytes.end(), memory.smoothed.data);
        const PlaneRows rows(mask, size.width);
        Bytes maskMemory(kStripeCount * static_cast<std::size_t>(size.width));
        const Mix mix{mask.empty() ? nullptr : &rows, 19, maskMemory.data()};
        return ImUpScale(memory.smoothed, size.levels, copy, mix, memory.rows, threads);
      });
    }
  }
}

TEST(Pyramid, LevelExtentsAreRoundedUp) {
  EXPECT_EQ(levelExtent(1920, 1), 960);
  EXPECT_EQ(levelExtent(1000, 2), 250);
  EXPECT_EQ(levelExtent(1001, 2), 251);
  EXPECT_EQ(levelExtent(20000, kMaxLevels), 40);
}

TEST(Pyramid, BinomialBlurMirrorsAtTheEdges) {
  for (const auto& [width, height] : {std::pair{22, 35}, {37, 22}, {2, 2}}) {
    Planes in = noisePlanes(width, height, 3);
    Planes out(width, height);
    Blur3x3Planes(in.view(), out.view());
    EXPECT_EQ(out.bytes, referenceBlur3x3(in).bytes);
    EXPECT_EQ(out.at(1, 0, 0),
              4 * (in.at(1, 0, 0) + in.at(1, 1, 0) + in.at(1, 0, 1) + in.at(1, 1, 1)) >> 4);
  }
}

}  // namespace
}  // namespace lumora::test
