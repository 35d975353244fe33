// The colour models and bands of pictures as they are read, brought to those that the looks take.
#pragma once

#include <vips/vips8>

namespace lumora::tool {

struct Rgb {
  vips::VImage image;        // eight bits; red, green, blue and, if the picture has it, alpha
  bool lostProfile = false;  // the picture has a profile that is damaged or not for its colours
};

// What becomes of RGB pictures with a profile of another colour space than sRGB.
enum class ProfileUse {
  kToSrgb,  // they become sRGB, which the looks are made for
  kKeep     // they keep their values and with them the profile
};

// Those in other colour models become sRGB, those in sRGB keep their values. Decodes nothing.
// Throws a PictureError for what has no such meaning.
Rgb toRgb(const vips::VImage& picture, ProfileUse use = ProfileUse::kToSrgb);

}  // namespace lumora::tool
