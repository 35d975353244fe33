#include "pictures.h"

#include <gtest/gtest.h>

namespace lumora::test {
namespace {

using vips::VImage;

class ImageLibrary : public testing::Environment {
 public:
  void SetUp() override {
    ASSERT_EQ(VIPS_INIT("lumora_tool_test"), 0);
    vips_cache_set_max(0);  // a file of the same name may have become another
  }
};

[[maybe_unused]] const auto* const kImageLibrary =
    testing::AddGlobalTestEnvironment(new ImageLibrary);

}  // namespace

VImage colourfulPicture(int width, int height, int bands, bool wide) {
  const int most = wide ? 65535 : 255;
  const VImage position = VImage::xyz(width, height);
  const VImage x = position.extract_band(0) * (1.0 * most / width);
  const VImage y = position.extract_band(1) * (1.0 * most / height);
  VImage picture = x.bandjoin(y).bandjoin((x * 0.5 + y * 0.25 + 31 * (wide ? 257 : 1)));
  if (bands == 4) picture = picture.bandjoin(VImage(most - y * 0.5));
  return picture.cast(wide ? VIPS_FORMAT_USHORT : VIPS_FORMAT_UCHAR)
      .copy(VImage::option()->set("interpretation",
                                  wide ? VIPS_INTERPRETATION_RGB16 : VIPS_INTERPRETATION_sRGB));
}

VImage openUpright(const std::string& path) {
  const VImage picture = VImage::new_from_file(path.c_str()).autorot();
  if (picture.interpretation() == VIPS_INTERPRETATION_RGB16) {
    return (picture / 256).floor().cast(VIPS_FORMAT_UCHAR);
  }
  return picture.colourspace(VIPS_INTERPRETATION_sRGB);
}

VImage blackAndWhite(const VImage& picture) {
  const VImage grey = ((picture.extract_band(0) * 19 + picture.extract_band(1) * 38 +
                        picture.extract_band(2) * 7 + 32) /
                       64)
                          .floor();
  VImage result = grey.bandjoin(grey).bandjoin(grey);
  if (picture.bands() == 4) result = result.bandjoin(picture.extract_band(3));
  return result.cast(VIPS_FORMAT_UCHAR);
}

double greatestDifference(const VImage& a, const VImage& b) {
  EXPECT_EQ(a.width(), b.width());
  EXPECT_EQ(a.height(), b.height());
  EXPECT_EQ(a.bands(), b.bands());
  if (testing::Test::HasFailure()) return 1e9;
  return (a - b).abs().max();
}

}  // namespace lumora::test
