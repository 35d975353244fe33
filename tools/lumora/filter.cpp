#include "filter.h"

#include "errors.h"
#include "library_log.h"

namespace lumora::tool {
namespace {

constexpr unsigned kShortestSide = 88;
constexpr unsigned kLongestSide = 20000;

bool isAllowedSide(unsigned side) { return side >= kShortestSide && side <= kLongestSide; }

std::string joined(const std::vector<std::string>& lines) {
  std::string all;
  for (const std::string& line : lines) all += text(all.empty() ? "" : "; ", line);
  return all;
}

std::string reasonOf(std::uint32_t status) {
  const std::string said = joined(takeLibraryErrors());
  const std::string quote = said.empty() ? "" : text(" (the library says: ", said, ")");
  switch (status) {
    case LUMORA_BAD_STATE: return "not enough memory" + quote;
    case LUMORA_THREAD_FAILED:
      return "no worker thread could be started; --single-thread does without" + quote;
    default: return text("the library refused it with status ", status, quote);
  }
}

}  // namespace

void requirePictureSize(Size size) {
  if (isAllowedSide(size.width) && isAllowedSide(size.height)) return;
  throw PictureError(text("is ", size.width, " x ", size.height, " pixels; looks need ",
                          kShortestSide, " to ", kLongestSide, " pixels on either side"));
}

void requireFrame(const Mode& mode, std::uint32_t format, Size size) {
  requirePictureSize(size);
  if (format == LUMORA_FORMAT_RGBA) return;
  if (mode.rgbaOnly) throw UsageError(text("the look ", mode.name, " exists for rgba frames only"));
  if (size.width % 2 != 0 || size.height % 2 != 0) {
    throw UsageError(
        text("nv21 and nv12 frames have even sides, not ", size.width, " x ", size.height));
  }
}

Filter::Filter(const ResourceSettings& settings, const LookSettings& look, Size size) {
  const Resources resources(settings);
  FilterInitParamApp init{};
  // Only texture looks have anything to prepare.
  if (look.mode->texture != nullptr) {
    init.eMode = look.mode->number;
    init.width = size.width;
    init.height = size.height;
  }
  init.eDirection = static_cast<std::uint32_t>(look.direction);
  init.pcResourceDir = resources.prefix();
  takeLibraryErrors();
  const std::uint32_t status = filterInit_APP(&handle_, &init);
  if (status == LUMORA_OK) return;
  filterDestroy(&handle_);
  if (status == LUMORA_BAD_RESOURCE) resources.explainRefusal(joined(takeLibraryErrors()));
  throw PictureError("the library could not be set up: " + reasonOf(status));
}

Filter::~Filter() { filterDestroy(&handle_); }

void Filter::apply(const LookSettings& look, const FilterImage& picture) {
  FilterAlbumParam record = recordFor(look, picture);
  takeLibraryErrors();
  const std::uint32_t status = filterProcess_for_album(handle_, &picture, &record);
  if (status != LUMORA_OK) throw PictureError("could not be filtered: " + reasonOf(status));
}

}  // namespace lumora::tool
