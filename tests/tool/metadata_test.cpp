// What a picture's file says about it survives; what it shows of the unfiltered picture does not.
#include <algorithm>
#include <cstring>

#include "pictures.h"

namespace lumora::test {
namespace {

using vips::VImage;

constexpr const char* kThumbnail = "jpeg-thumbnail-data";
constexpr const char* kExif[] = {"exif-ifd0-Make", "exif-ifd3-GPSLatitude"};
constexpr const char* kXmp = "<x:xmpmeta xmlns:x='adobe:ns:meta/'>a note</x:xmpmeta>";

Bytes blobOf(const VImage& image, const char* field) {
  if (image.get_typeof(field) == 0) return {};
  std::size_t bytes = 0;
  const auto* first = static_cast<const std::uint8_t*>(image.get_blob(field, &bytes));
  return {first, first + bytes};
}

bool contains(const Bytes& all, const Bytes& part) {
  return std::search(all.begin(), all.end(), part.begin(), part.end()) != all.end();
}

class MetadataTest : public PictureTest {
 protected:
  // As a phone might write it: a wide-gamut profile, EXIF with a thumbnail, XMP, not upright.
  MetadataTest() {
    VImage picture = colourfulPicture(200, 140)
                         .icc_transform("p3", VImage::option()->set("input_profile", "srgb"))
                         .copy();
    picture.set(VIPS_META_ORIENTATION, 6);
    picture.set(kExif[0], "Lumen Works (Lumen Works, ASCII, 12 components, 12 bytes)");
    picture.set(kExif[1], "47/1 22/1 0/1 (47, 22, 0, Rational, 3 components, 24 bytes)");
    vips_image_set_blob_copy(picture.get_image(), VIPS_META_XMP_NAME, kXmp, std::strlen(kXmp));
    writePicture("thumbnail.jpg[strip]", 160, 120);
    const Bytes thumbnail = readFile("thumbnail.jpg");
    vips_image_set_blob_copy(picture.get_image(), kThumbnail, thumbnail.data(), thumbnail.size());
    writePicture("phone.jpg", picture);
  }
};

TEST_F(MetadataTest, ProfileExifAndXmpAreKeptAndTheThumbnailIsNew) {
  const VImage phone = stored("phone.jpg");
  const Bytes oldThumbnail = blobOf(phone, kThumbnail);
  ASSERT_FALSE(oldThumbnail.empty());
  ASSERT_TRUE(contains(readFile("phone.jpg"), oldThumbnail));
  for (const std::string file : {"grey.jpg", "grey.png", "grey.webp"}) {
    SCOPED_TRACE(file);
    succeed("apply -l heibai phone.jpg " + file);
    const VImage grey = stored(file);
    EXPECT_EQ(vips_image_get_orientation(grey.get_image()), 1);
    for (const char* field : {VIPS_META_ICC_NAME, VIPS_META_XMP_NAME}) {
      EXPECT_EQ(blobOf(grey, field), blobOf(phone, field)) << field;
    }
    for (const char* field : kExif) {
      ASSERT_NE(grey.get_typeof(field), 0u) << field;
      EXPECT_STREQ(grey.get_string(field), phone.get_string(field));
    }
    EXPECT_FALSE(contains(readFile(file), oldThumbnail));
    const Bytes thumbnail = blobOf(grey, kThumbnail);
    ASSERT_FALSE(thumbnail.empty());
    const VImage small = VImage::new_from_buffer(thumbnail.data(), thumbnail.size(), "");
    EXPECT_LT(small.width(), small.height());
    EXPECT_LE(greatestDifference(small.extract_band(0), small.extract_band(2)), 2);
  }
}

TEST_F(MetadataTest, APictureWithoutMetadataGetsNoneNotEvenFromTheOneBefore) {
  writePicture("plain.png");
  succeed("apply -l heibai -d out --to jpg phone.jpg plain.png");
  const VImage plain = stored("out/plain.jpg");
  for (const char* field : {VIPS_META_ICC_NAME, VIPS_META_XMP_NAME, kThumbnail, kExif[0]}) {
    EXPECT_EQ(plain.get_typeof(field), 0u) << field;
  }
}

}  // namespace
}  // namespace lumora::test
