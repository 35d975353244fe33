#include "filter.h"

#include <cstdio>

#include "errors.h"
#include "host/log.h"

namespace lumora::tool {
namespace {

using host::Result;
using host::Trouble;

std::string reasonOf(const Result& result) {
  const bool isThreads = result.trouble == Trouble::kThreads;
  return isThreads ? result.message + "; --single-thread does without" : result.message;
}

}  // namespace

void showLibraryLog() {
  host::setLogSink([](int, const char* line) { std::fprintf(stderr, "filter: %s\n", line); });
}

void requirePictureSize(Size size) {
  // Every look takes the same sizes of rgba.
  const Result result = host::checkPicture(kModes.front(), LUMORA_FORMAT_RGBA, size);
  if (!result) throw PictureError(result.message);
}

void requireFrame(const Mode& mode, std::uint32_t format, Size size) {
  const Result result = host::checkPicture(mode, format, size);
  if (!result) throw UsageError("the frame: " + result.message);
}

// Opened for a look without texture, a session serves every look.
Filter::Filter(const ResourceSettings& settings) { open(settings, kModes.front(), {}, 0); }

Filter::Filter(const ResourceSettings& settings, const LookSettings& look, Size size) {
  open(settings, *look.mode, size, look.values.direction);
}

void Filter::open(const ResourceSettings& settings, const Mode& mode, Size size, int direction) {
  static_assert(!kModes.front().texture);
  const Resources resources(settings);
  const Result result = session_.open(mode, resources.prefix(), size, direction);
  if (result) return;
  if (result.trouble == Trouble::kResource) resources.explainRefusal(result.message);
  throw PictureError("the library could not be set up: " + reasonOf(result));
}

void Filter::apply(const LookSettings& look, const FilterImage& picture) {
  const Result result = session_.apply(*look.mode, look.values, picture);
  if (result) return;
  if (result.trouble == Trouble::kArgument) throw PictureError(result.message);
  throw PictureError("could not be filtered: " + reasonOf(result));
}

}  // namespace lumora::tool
