// What a picture's file says about it survives; what it shows of the unfiltered picture does not.
#include <gtest/gtest.h>

#include <algorithm>

#include "pictures.h"
#include "tool_runner.h"

namespace lumora::test {
namespace {

using vips::VImage;

constexpr const char* kThumbnail = "jpeg-thumbnail-data";
constexpr const char* kXmp = "<x:xmpmeta xmlns:x='adobe:ns:meta/'>a note</x:xmpmeta>";

Bytes blobOf(const VImage& image, const char* field) {
  if (image.get_typeof(field) == 0) return {};
  std::size_t bytes = 0;
  const void* data = image.get_blob(field, &bytes);
  const auto* first = static_cast<const std::uint8_t*>(data);
  return {first, first + bytes};
}

void setBlob(VImage& image, const char* field, const Bytes& bytes) {
  vips_image_set_blob_copy(image.get_image(), field, bytes.data(), bytes.size());
}

Bytes coloredThumbnail() {
  void* data = nullptr;
  std::size_t bytes = 0;
  colourfulPicture(160, 120).write_to_buffer(".jpg[strip]", &data, &bytes);
  const auto* first = static_cast<std::uint8_t*>(data);
  const Bytes jpeg(first, first + bytes);
  g_free(data);
  return jpeg;
}

bool contains(const Bytes& all, const Bytes& part) {
  return std::search(all.begin(), all.end(), part.begin(), part.end()) != all.end();
}

class MetadataTest : public ToolTest, public testing::WithParamInterface<const char*> {
 protected:
  // As a phone might write it: a wide-gamut profile, EXIF with a thumbnail, XMP, not upright.
  void writePhonePicture() const {
    VImage picture = colourfulPicture(200, 140)
                         .icc_transform("p3", VImage::option()->set("input_profile", "srgb"))
                         .copy();
    picture.set(VIPS_META_ORIENTATION, 6);
    picture.set("exif-ifd0-Make", "Lumen Works (Lumen Works, ASCII, 12 components, 12 bytes)");
    picture.set("exif-ifd3-GPSLatitude",
                "47/1 22/1 0/1 (47, 22, 0, Rational, 3 components, 24 bytes)");
    setBlob(picture, VIPS_META_XMP_NAME, Bytes(kXmp, kXmp + std::strlen(kXmp)));
    setBlob(picture, kThumbnail, coloredThumbnail());
    picture.write_to_file(pathOf("phone.jpg").c_str());
  }
};

TEST_P(MetadataTest, ProfileExifAndXmpAreKeptAndTheThumbnailIsNew) {
  writePhonePicture();
  const VImage phone = VImage::new_from_file(pathOf("phone.jpg").c_str());
  const Bytes oldThumbnail = blobOf(phone, kThumbnail);
  ASSERT_FALSE(oldThumbnail.empty());
  ASSERT_TRUE(contains(readFile("phone.jpg"), oldThumbnail));

  const ToolResult result = run({"apply", "-l", "heibai", "phone.jpg", GetParam()});

  ASSERT_EQ(result.exitCode, 0) << result.standardError;
  const VImage grey = VImage::new_from_file(pathOf(GetParam()).c_str());
  EXPECT_EQ(vips_image_get_orientation(grey.get_image()), 1);
  EXPECT_EQ(blobOf(grey, VIPS_META_ICC_NAME), blobOf(phone, VIPS_META_ICC_NAME));
  EXPECT_EQ(blobOf(grey, VIPS_META_XMP_NAME), blobOf(phone, VIPS_META_XMP_NAME));
  for (const char* field : {"exif-ifd0-Make", "exif-ifd3-GPSLatitude"}) {
    ASSERT_NE(grey.get_typeof(field), 0u) << field;
    EXPECT_STREQ(grey.get_string(field), phone.get_string(field));
  }
  EXPECT_FALSE(contains(readFile(GetParam()), oldThumbnail));
  const Bytes thumbnail = blobOf(grey, kThumbnail);
  ASSERT_FALSE(thumbnail.empty());
  const VImage small = VImage::new_from_buffer(thumbnail.data(), thumbnail.size(), "");
  EXPECT_LT(small.width(), small.height());
  EXPECT_LE(greatestDifference(small.extract_band(0), small.extract_band(2)), 2);
}

INSTANTIATE_TEST_SUITE_P(Formats, MetadataTest,
                         testing::Values("grey.jpg", "grey.png", "grey.webp"));

TEST_F(MetadataTest, APictureWithoutMetadataGetsNone) {
  colourfulPicture(120, 100).write_to_file(pathOf("plain.png").c_str());
  ASSERT_EQ(run({"apply", "-l", "heibai", "plain.png", "plain.jpg"}).exitCode, 0);
  const VImage plain = VImage::new_from_file(pathOf("plain.jpg").c_str());
  EXPECT_EQ(plain.get_typeof(VIPS_META_ICC_NAME), 0u);
  EXPECT_EQ(plain.get_typeof(kThumbnail), 0u);
}

TEST_F(MetadataTest, NothingOfOnePictureGetsIntoTheNext) {
  writePhonePicture();
  colourfulPicture(200, 140).write_to_file(pathOf("plain.jpg").c_str());
  ASSERT_EQ(run({"apply", "-l", "heibai", "-d", "out", "phone.jpg", "plain.jpg"}).exitCode, 0);
  const VImage plain = VImage::new_from_file(pathOf("out/plain.jpg").c_str());
  for (const char* field : {VIPS_META_ICC_NAME, VIPS_META_XMP_NAME, kThumbnail, "exif-ifd0-Make"}) {
    EXPECT_EQ(plain.get_typeof(field), 0u) << field;
  }
}

TEST_F(MetadataTest, ConvertedColoursGetTheProfileThatDescribesThem) {
  const VImage print =
      colourfulPicture(120, 100).icc_export(VImage::option()->set("output_profile", "cmyk"));
  print.write_to_file(pathOf("print.jpg").c_str());
  ASSERT_EQ(run({"apply", "-l", "moran", "print.jpg", "screen.jpg"}).exitCode, 0);
  const VImage screen = VImage::new_from_file(pathOf("screen.jpg").c_str());
  const Bytes profile = blobOf(screen, VIPS_META_ICC_NAME);
  EXPECT_NE(profile,
            blobOf(VImage::new_from_file(pathOf("print.jpg").c_str()), VIPS_META_ICC_NAME));
  // Bytes 16 to 19 of a profile name the colour model of the pixels it is for.
  ASSERT_GT(profile.size(), 20u);
  EXPECT_EQ(std::string(profile.begin() + 16, profile.begin() + 20), "RGB ");
}

}  // namespace
}  // namespace lumora::test
