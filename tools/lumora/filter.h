// A handle of the library, with its failures turned into explained errors.
#pragma once

#include "look_settings.h"
#include "lumora/filters.h"
#include "resources.h"
#include "words.h"

namespace lumora::tool {

// Throws a PictureError for sizes that no look takes.
void requirePictureSize(Size size);
// The same for raw frames, which may have other needs beside.
void requireFrame(const Mode& mode, std::uint32_t format, Size size);

class Filter {
 public:
  // For pictures of one size the look's texture is prepared once; without a size it is resampled
  // for every picture.
  Filter(const ResourceSettings& resources, const LookSettings& look, Size size = {});
  Filter(const Filter&) = delete;
  Filter& operator=(const Filter&) = delete;
  ~Filter();

  // Rewrites the picture.
  void apply(const LookSettings& look, const FilterImage& picture);

 private:
  FilterHandle* handle_ = nullptr;
};

}  // namespace lumora::tool
