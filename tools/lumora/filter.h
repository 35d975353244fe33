// A handle of the library, with its failures turned into explained errors.
#pragma once

#include "host/session.h"
#include "look_settings.h"
#include "lumora/filters.h"
#include "resources.h"
#include "words.h"

namespace lumora::tool {

// Prints every line of the library's log to standard error from now on.
void showLibraryLog();

// Throws a PictureError for sizes that no look takes.
void requirePictureSize(Size size);
// Throws a UsageError for frames that the look does not take.
void requireFrame(const Mode& mode, std::uint32_t format, Size size);

class Filter {
 public:
  // For every look and size: a look's texture is resampled for every picture.
  explicit Filter(const ResourceSettings& resources);
  // For one look, its texture prepared for pictures of one size.
  Filter(const ResourceSettings& resources, const LookSettings& look, Size size);

  // Rewrites the picture. An error line in the library's log is a failure, whatever the status
  // says.
  void apply(const LookSettings& look, const FilterImage& picture);

 private:
  void open(const ResourceSettings& settings, const Mode& mode, Size size, int direction);

  host::Session session_;
};

}  // namespace lumora::tool
