#include "colours.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "errors.h"

namespace lumora::tool {
namespace {

using vips::VImage;

// What a file can hold that is a picture; the rest is measurements, tables and damage.
struct ColourModel {
  VipsInterpretation interpretation;
  VipsBandFormat samples;
  int bands;  // without alpha
};

constexpr ColourModel kColourModels[] = {
    {VIPS_INTERPRETATION_sRGB, VIPS_FORMAT_UCHAR, 3},
    {VIPS_INTERPRETATION_RGB16, VIPS_FORMAT_USHORT, 3},
    {VIPS_INTERPRETATION_B_W, VIPS_FORMAT_UCHAR, 1},
    {VIPS_INTERPRETATION_GREY16, VIPS_FORMAT_USHORT, 1},
    {VIPS_INTERPRETATION_CMYK, VIPS_FORMAT_UCHAR, 4},
    {VIPS_INTERPRETATION_CMYK, VIPS_FORMAT_USHORT, 4},
    {VIPS_INTERPRETATION_scRGB, VIPS_FORMAT_FLOAT, 3},
    {VIPS_INTERPRETATION_XYZ, VIPS_FORMAT_FLOAT, 3},
    {VIPS_INTERPRETATION_LAB, VIPS_FORMAT_FLOAT, 3},
    {VIPS_INTERPRETATION_LABS, VIPS_FORMAT_SHORT, 3},
};

const char* nameOf(VipsBandFormat samples) {
  return vips_enum_nick(VIPS_TYPE_BAND_FORMAT, samples);
}

void requireColourModel(const VImage& picture) {
  const bool isKnown = std::any_of(
      std::begin(kColourModels), std::end(kColourModels), [&](const ColourModel& model) {
        const int extra = picture.bands() - model.bands;
        return picture.interpretation() == model.interpretation &&
               picture.format() == model.samples && (extra == 0 || extra == 1);
      });
  if (isKnown) return;
  throw PictureError(
      text("has ", picture.bands(), " bands of type ", nameOf(picture.format()), " as ",
           vips_enum_nick(VIPS_TYPE_INTERPRETATION, picture.interpretation()),
           "; grey, RGB and CMYK of 8 or 16 bits can be read, and Lab, each with one alpha"));
}

bool isRgb(const VImage& image) {
  return image.interpretation() == VIPS_INTERPRETATION_sRGB ||
         image.interpretation() == VIPS_INTERPRETATION_RGB16;
}

bool isGrey(const VImage& image) {
  return image.interpretation() == VIPS_INTERPRETATION_B_W ||
         image.interpretation() == VIPS_INTERPRETATION_GREY16;
}

constexpr std::size_t kProfileHeadBytes = 128;

// The picture's profile as long as it says it is; empty where it has none or only a part.
std::string profileOf(const VImage& image) {
  std::size_t bytes = 0;
  const auto* const first =
      static_cast<const unsigned char*>(image.get_blob(VIPS_META_ICC_NAME, &bytes));
  if (bytes < kProfileHeadBytes) return {};
  const std::size_t length =
      std::size_t{first[0]} << 24 | first[1] << 16 | first[2] << 8 | first[3];
  if (length < kProfileHeadBytes || length > bytes) return {};
  return {first, first + length};
}

VImage withProfile(const VImage& image, const std::string& profile) {
  VImage copy = image.copy();
  vips_image_set_blob_copy(copy.get_image(), VIPS_META_ICC_NAME, profile.data(), profile.size());
  return copy;
}

VImage withoutProfile(const VImage& image) {
  VImage copy = image.copy();
  copy.remove(VIPS_META_ICC_NAME);
  return copy;
}

// Whether colours of the image can be converted by the profile: a single one is.
bool canUse(const std::string& profile, const VImage& image) {
  if (profile.empty()) return false;
  const std::string_view model = std::string_view(profile).substr(16, 4);
  if (model != (isRgb(image) ? "RGB " : isGrey(image) ? "GRAY" : "CMYK")) return false;
  try {
    const VImage pixel = VImage::black(1, 1, VImage::option()->set("bands", image.bands()))
                             .cast(image.format())
                             .copy(VImage::option()->set("interpretation", image.interpretation()));
    withProfile(pixel, profile).icc_import(VImage::option()->set("embedded", true)).avg();
    return true;
  } catch (const vips::VError&) {
    vips_error_clear();
    return false;
  }
}

// Sixteen bits shrink to the upper eight.
VImage toEightBits(const VImage& rgb) {
  const bool isWide = rgb.format() == VIPS_FORMAT_USHORT;
  return rgb.cast(VIPS_FORMAT_UCHAR, VImage::option()->set("shift", isWide))
      .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
}

VImage byProfile(const VImage& image) {
  return image.icc_transform("srgb", VImage::option()
                                         ->set("embedded", true)
                                         ->set("intent", VIPS_INTENT_RELATIVE)
                                         ->set("black_point_compensation", true));
}

VImage byModel(const VImage& image) {
  return toEightBits(isRgb(image) ? image : image.colourspace(VIPS_INTERPRETATION_sRGB));
}

void requireRgb(const VImage& image) {
  const bool isRgb = (image.bands() == 3 || image.bands() == 4) &&
                     image.format() == VIPS_FORMAT_UCHAR && image.coding() == VIPS_CODING_NONE;
  if (!isRgb) throw PictureError("cannot be brought to red, green and blue of eight bits");
}

// Profiles of sRGB differ in their bytes; what tells them is that no colour changes by more than
// rounding. Judged by the colours of a coarse cube.
bool isSrgb(const std::string& profile) {
  constexpr int kSteps = 6;
  std::vector<unsigned char> cube;
  for (int i = 0; i < kSteps * kSteps * kSteps; ++i) {
    for (const int step : {i % kSteps, i / kSteps % kSteps, i / kSteps / kSteps}) {
      cube.push_back(static_cast<unsigned char>(step * 255 / (kSteps - 1)));
    }
  }
  const VImage colours =
      VImage::new_from_memory(cube.data(), cube.size(), static_cast<int>(cube.size() / 3), 1, 3,
                              VIPS_FORMAT_UCHAR)
          .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
  return (byProfile(withProfile(colours, profile)) - colours).abs().max() <= 1;
}

Rgb byRgbProfile(const VImage& rgb, const std::string& profile, ProfileUse use) {
  const VImage image = withProfile(rgb, profile);
  const bool keeps = use == ProfileUse::kKeep || isSrgb(profile);
  return {keeps ? byModel(image) : byProfile(image)};
}

Rgb convert(const VImage& picture, ProfileUse use) {
  if (picture.get_typeof(VIPS_META_ICC_NAME) == 0) return {byModel(picture)};
  const std::string profile = profileOf(picture);
  if (!isRgb(picture) && canUse(profile, picture)) return {byProfile(picture)};
  if (isRgb(picture) && canUse(profile, picture)) return byRgbProfile(picture, profile, use);
  const VImage rgb = byModel(withoutProfile(picture));
  // A grey picture may have an RGB profile: its levels are red, green and blue there.
  if (isGrey(picture) && canUse(profile, rgb)) return byRgbProfile(rgb, profile, use);
  return {rgb, true};
}

}  // namespace

Rgb toRgb(const VImage& stored, ProfileUse use) {
  // Lab of 8 bits comes packed, with more bits than 8.
  const VImage picture = stored.coding() == VIPS_CODING_LABQ ? stored.LabQ2Lab() : stored;
  requireColourModel(picture);
  Rgb rgb = convert(picture, use);
  requireRgb(rgb.image);
  return rgb;
}

}  // namespace lumora::tool
