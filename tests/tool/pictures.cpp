#include "pictures.h"

#include <limits>

namespace lumora::test {

using vips::VImage;

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

VImage blackAndWhite(const VImage& picture) {
  const VImage red = picture.extract_band(0), green = picture.extract_band(1),
               blue = picture.extract_band(2);
  const VImage grey = ((red * 19 + green * 38 + blue * 7 + 32) / 64).floor();
  VImage result = grey.bandjoin(grey).bandjoin(grey);
  if (picture.bands() == 4) result = result.bandjoin(picture.extract_band(3));
  return result.cast(VIPS_FORMAT_UCHAR);
}

double greatestDifference(const VImage& a, const VImage& b) {
  const bool areAlike =
      a.width() == b.width() && a.height() == b.height() && a.bands() == b.bands();
  return areAlike ? (a - b).abs().max() : std::numeric_limits<double>::infinity();
}

void PictureTest::SetUpTestSuite() {
  ASSERT_EQ(VIPS_INIT("lumora_tool_test"), 0);
  vips_cache_set_max(0);  // a file of the same name may have become another
}

void PictureTest::writePicture(const std::string& name, const VImage& picture) const {
  picture.write_to_file(pathOf(name).c_str());
}

void PictureTest::writePicture(const std::string& name, int width, int height) const {
  writePicture(name, colourfulPicture(width, height));
}

VImage PictureTest::stored(const std::string& name) const {
  return VImage::new_from_file(pathOf(name).c_str());
}

VImage PictureTest::open(const std::string& name) const {
  const VImage picture = stored(name).autorot();
  if (picture.interpretation() == VIPS_INTERPRETATION_RGB16) {
    return (picture / 256).floor().cast(VIPS_FORMAT_UCHAR);
  }
  return picture.colourspace(VIPS_INTERPRETATION_sRGB);
}

void PictureTest::expectBlackAndWhite(const std::string& result,
                                      const std::string& original) const {
  EXPECT_EQ(greatestDifference(open(result), blackAndWhite(open(original))), 0) << result;
}

}  // namespace lumora::test
