// What a picture's file says about it survives; what it shows of the unfiltered picture does not.
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <sstream>

#include "pictures.h"

namespace lumora::test {
namespace {

namespace fs = std::filesystem;
using vips::VImage;

constexpr const char* kThumbnail = "jpeg-thumbnail-data";
constexpr const char* kExif[] = {"exif-ifd0-Make", "exif-ifd3-GPSLatitude"};
constexpr const char* kXmp = "<x:xmpmeta xmlns:x='adobe:ns:meta/'>a note</x:xmpmeta>";
constexpr const char* kFormats[] = {"jpg", "png", "webp", "tif", "avif", "heic"};

Bytes blobOf(const VImage& image, const char* field) {
  if (image.get_typeof(field) == 0) return {};
  std::size_t bytes = 0;
  const auto* first = static_cast<const std::uint8_t*>(image.get_blob(field, &bytes));
  return {first, first + bytes};
}

bool contains(const Bytes& all, const Bytes& part) {
  return std::search(all.begin(), all.end(), part.begin(), part.end()) != all.end();
}

VImage withBlob(const VImage& image, const char* field, const void* bytes, std::size_t count) {
  VImage copy = image.copy();
  vips_image_set_blob_copy(copy.get_image(), field, bytes, count);
  return copy;
}

// The image library itself only writes profiles that fit.
Bytes withProfileSegment(Bytes jpeg, const Bytes& profile) {
  const std::size_t length = 2 + 14 + profile.size();
  Bytes segment{0xFF, 0xE2, static_cast<std::uint8_t>(length >> 8),
                static_cast<std::uint8_t>(length)};
  for (const char c : std::string_view("ICC_PROFILE\0\1\1", 14)) segment.push_back(c);
  segment.insert(segment.end(), profile.begin(), profile.end());
  jpeg.insert(jpeg.begin() + 2, segment.begin(), segment.end());
  return jpeg;
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
    picture = withBlob(picture, VIPS_META_XMP_NAME, kXmp, std::strlen(kXmp));
    writePicture("thumbnail.jpg[strip]", 160, 120);
    const Bytes thumbnail = readFile("thumbnail.jpg");
    writePicture("phone.jpg", withBlob(picture, kThumbnail, thumbnail.data(), thumbnail.size()));
  }

  bool hasExiftool() const { return runShell("command -v exiftool").exitCode == 0; }
};

TEST_F(MetadataTest, ProfileExifAndXmpAreKeptAndTheThumbnailIsNew) {
  const VImage phone = stored("phone.jpg");
  const Bytes oldThumbnail = blobOf(phone, kThumbnail);
  ASSERT_FALSE(oldThumbnail.empty());
  ASSERT_TRUE(contains(readFile("phone.jpg"), oldThumbnail));
  for (const std::string file : {"grey.jpg", "grey.png", "grey.webp"}) {
    SCOPED_TRACE(file);
    succeed("apply -l heibai --profile keep phone.jpg " + file);
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

// From every format that is read into every one that is written, read by a program of others.
TEST_F(MetadataTest, EveryFormatKeepsWhatItCanHold) {
  if (!hasExiftool()) GTEST_SKIP() << "no exiftool";
  shell("mkdir in");
  for (const std::string format : kFormats) writePicture("in/" + format + "." + format + "[strip]");
  shell(
      "exiftool -q -q -m -overwrite_original -Make=Lumen -Model=M1 -Artist=Anna -ExposureTime=1/60 "
      "-FNumber=2.8 -ISO=200 -DateTimeOriginal='2024:01:02 03:04:05' -LensModel=L50 "
      "-UserComment=hello -GPSLatitude=47.5 -GPSLatitudeRef=N -XMP:Title=T -XMP:Rating=4 "
      "-XMP:Creator=C -IPTC:Headline=H -IPTC:Keywords=one -IPTC:Keywords=two in");
  for (const std::string to : kFormats) {
    succeed("apply -l heibai -r --to " + to + " --suffix _to -d out in");
  }
  succeed("apply -l heibai --strip in/jpg.jpg out/stripped.jpg");
  const std::string read =
      runShell(
          "exiftool -q -q -m -f -p '$FileName: $Make $Model $Artist $ExposureTime $FNumber $ISO "
          "$DateTimeOriginal $LensModel $UserComment $GPSLatitude $XMP:Title $XMP:Rating "
          "$XMP:Creator"
          " $IPTC:Headline $IPTC:Keywords' in out")
          .output;
  const std::string facts =
      "Lumen M1 Anna 1/60 2.8 200 2024:01:02 03:04:05 L50 hello 47 deg 30' 0.00\" N";
  for (const std::string from : kFormats) {
    for (const std::string to : kFormats) {
      const bool holdIptc = (from == "jpg" || from == "tif") && (to == "jpg" || to == "tif");
      EXPECT_TRUE(says(read, from + "_to." + to + ": " + facts + " T 4 C " +
                                 (holdIptc ? "H one, two\n" : "- -\n")));
    }
  }
  // What goes is words at length, and all that is not a list of fields.
  EXPECT_TRUE(says(read, "stripped.jpg: " + facts + " - - - - -\n"));
}

std::string encoded(const Bytes& bytes, bool isHex) {
  std::string text;
  if (!isHex) {
    gchar* const base64 = g_base64_encode(bytes.data(), bytes.size());
    text = base64;
    g_free(base64);
  } else {
    for (const std::uint8_t byte : bytes) {
      for (const int nibble : {byte >> 4, byte & 15}) text += "0123456789abcdef"[nibble];
    }
  }
  return text;
}

// A picture that was hidden somewhere, and whether any of it is still there.
class Marker {
 public:
  explicit Marker(const Bytes& picture) {
    for (std::size_t at = picture.size() / 4; at + 60 < picture.size(); at += picture.size() / 4) {
      const Bytes piece(picture.begin() + static_cast<std::ptrdiff_t>(at),
                        picture.begin() + static_cast<std::ptrdiff_t>(at) + 48);
      raw_.push_back(piece);
      coded_.push_back(encoded(piece, true));
      // At each place of three bytes the digits are others; the first and last belong to
      // neighbours.
      for (std::ptrdiff_t skip = 0; skip < 3; ++skip) {
        coded_.push_back(encoded({piece.begin() + skip, piece.end() - 3 + skip}, false));
      }
    }
  }

  bool isIn(const Bytes& file) const {
    std::string text;
    for (std::size_t i = 0; i < file.size(); ++i) {
      if (file[i] == '&') {
        while (i < file.size() && file[i] != ';') ++i;
      } else if (std::isspace(file[i]) == 0) {
        text += static_cast<char>(file[i]);
      }
    }
    return std::any_of(raw_.begin(), raw_.end(),
                       [&](const Bytes& piece) { return contains(file, piece); }) ||
           std::any_of(coded_.begin(), coded_.end(),
                       [&](const std::string& piece) { return text.find(piece) != text.npos; });
  }

 private:
  std::vector<Bytes> raw_;
  std::vector<std::string> coded_;
};

// Places that exiftool can put a picture into, where the format has them.
constexpr const char* kPlaces[] = {"ThumbnailImage",
                                   "MakerNoteUnknown",
                                   "PhotoshopThumbnail",
                                   "IPTC:ObjectPreviewData",
                                   "XMP:ThumbnailImage",
                                   "XMP-GImage:ImageData",
                                   "XMP-GDepth:DepthImage",
                                   "EXIF:ImageSourceData",
                                   "EXIF:DNGPrivateData",
                                   "EXIF:ImageDescription",
                                   "Comment",
                                   "XMP:CreatorTool"};

class HiddenPictureTest : public MetadataTest {
 protected:
  // Whether the file has the marker, as it is or as exiftool decodes it.
  bool holds(const fs::path& file, const Marker& marker) const {
    const std::string dump = pathOf("dumps/" + file.string() + ".dump");
    const bool isDumped =
        fs::exists(dump) && marker.isIn(readFile("dumps/" + file.string() + ".dump"));
    return isDumped || marker.isIn(readFile(file.string()));
  }
  void dump(const std::string& folder) const {
    runShell("exiftool -q -q -r -b -a -U -ee -w 'dumps/%d%f.%e.dump' " + folder);
  }
  std::vector<fs::path> picturesIn(const std::string& folder) const {
    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(pathOf(folder))) {
      if (entry.is_regular_file()) files.push_back(fs::relative(entry.path(), pathOf(".")));
    }
    return files;
  }

  // in/FORMAT/PLACE.FORMAT; returns how many have the marker.
  std::size_t plant(const Marker& marker) const {
    std::ostringstream arguments;
    for (const std::string format : kFormats) {
      fs::create_directories(pathOf("in/" + format));
      writePicture("plain." + format);
      for (const std::string place : kPlaces) {
        std::string name = place + "." + format;
        std::replace(name.begin(), name.end(), ':', '-');
        const std::string file = "in/" + format + "/" + name;
        fs::copy_file(pathOf("plain." + format), pathOf(file));
        arguments << "-" << place << "<=marker.jpg\n" << file << "\n-execute\n";
      }
    }
    writeFile("plant.args", arguments.str());
    runShell("exiftool -@ plant.args -common_args -q -q -m -overwrite_original");
    shell(
        "cat plain.jpg marker.jpg > in/jpg/appended.jpg; cat plain.png marker.jpg > in/png/a.png");
    dump("in");
    for (const fs::path& file : picturesIn("in")) {
      if (!holds(file, marker)) fs::remove(pathOf(file.string()));
    }
    return picturesIn("in").size();
  }
};

TEST_F(HiddenPictureTest, NoPlaceInAnyFormatKeepsThePictureAsItWas) {
  if (!hasExiftool()) GTEST_SKIP() << "no exiftool";
  writePicture("marker.jpg[strip]", VImage::gaussnoise(60, 45).cast(VIPS_FORMAT_UCHAR));
  const Marker marker(readFile("marker.jpg"));
  ASSERT_TRUE(marker.isIn(readFile("marker.jpg")));
  const std::size_t planted = plant(marker);
  ASSERT_GE(planted, 45u);
  for (const std::string look : {"heibai", "mosaic"}) {
    for (const std::string to : kFormats) {
      succeed("apply -r -l " + look + " --jobs 2 --to " + to + " -d out/" + look + "/" + to +
              " in");
    }
  }
  succeed("apply -r -l heibai --strip --to jpg -d out/stripped in");
  dump("out");
  const std::vector<fs::path> results = picturesIn("out");
  EXPECT_EQ(results.size(), 13 * planted);
  std::printf("%zu pictures, %zu results\n", planted, results.size());
  for (const fs::path& file : results) EXPECT_FALSE(holds(file, marker)) << file;
}

TEST_F(MetadataTest, OnlyTheFirstOfSeveralPicturesIsTakenOver) {
  VImage pages =
      colourfulPicture(120, 100).join(colourfulPicture(120, 100).invert(), VIPS_DIRECTION_VERTICAL);
  pages = pages.copy();
  pages.set(VIPS_META_PAGE_HEIGHT, 100);
  for (const std::string format : {"tif", "gif", "webp"}) {
    writePicture("in." + format, pages);
    for (const std::string to : {"tif", "webp"}) {
      succeed("apply --force -l mosaic in." + format + " out." + to);
      const VImage result =
          VImage::new_from_file(pathOf("out." + to).c_str(), VImage::option()->set("n", -1));
      EXPECT_EQ(result.height(), 100) << format << " to " << to;
    }
  }
}

// Neither is lost without a word, and a grey picture with an RGB profile is nothing unusual.
TEST_F(MetadataTest, ProfilesAreKeptWhereTheyFitAndLeftOutWithAWord) {
  const VImage colour = colourfulPicture(120, 90),
               grey = colour.colourspace(VIPS_INTERPRETATION_B_W);
  const Bytes srgb = blobOf(colour.icc_export(VImage::option()->set("output_profile", "srgb")),
                            VIPS_META_ICC_NAME);
  // Bytes 16 to 19 name the colour model that the profile is for.
  Bytes print = srgb;
  std::copy_n("CMYK", 4, print.begin() + 16);
  const Bytes half(srgb.begin(), srgb.begin() + static_cast<std::ptrdiff_t>(srgb.size() / 2));
  const Bytes noise(500, 'x');
  struct Case {
    const char* name;
    VImage picture;
    Bytes profile;
    bool isKept;
  };
  for (const auto& [name, picture, profile, isKept] :
       {Case{"colour and srgb", colour, srgb, true}, Case{"grey and srgb", grey, srgb, true},
        Case{"colour and print", colour, print, false}, Case{"grey and print", grey, print, false},
        Case{"colour and half", colour, half, false}, Case{"grey and noise", grey, noise, false}}) {
    SCOPED_TRACE(name);
    writePicture("plain.jpg[Q=100,strip]", picture);
    writeFile("in.jpg", withProfileSegment(readFile("plain.jpg"), profile));
    const ToolResult result = run("apply --force -l heibai in.jpg out.png");
    EXPECT_EQ(result.exitCode, 0) << result.error;
    EXPECT_EQ(result.error, isKept ? ""
                                   : "lumora: in.jpg: its colour profile is damaged or not for its "
                                     "colours, and left out\n");
    EXPECT_EQ(blobOf(stored("out.png"), VIPS_META_ICC_NAME), isKept ? profile : Bytes());
    expectBlackAndWhite("out.png", "plain.jpg");
  }
}

TEST_F(MetadataTest, WhatIsTooLongForTheFormatIsLeftOutWithAWord) {
  const std::string xmp = "<x:xmpmeta>" + std::string(70000, ' ') + "</x:xmpmeta>";
  writePicture("in.png",
               withBlob(colourfulPicture(120, 90), VIPS_META_XMP_NAME, xmp.data(), xmp.size()));
  succeed("apply -l heibai in.png out.webp");
  EXPECT_EQ(blobOf(stored("out.webp"), VIPS_META_XMP_NAME).size(), xmp.size());
  EXPECT_EQ(run("apply --force -l heibai in.png out.jpg").error,
            "lumora: in.png: its XMP is too long for a JPEG, and left out\n");
}

}  // namespace
}  // namespace lumora::test
