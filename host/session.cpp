#include "host/session.h"

#include "host/log.h"
#include "looks/texture/film_ageing.h"
#include "platform/vector_level.h"
#include "resources/resource_files.h"

namespace lumora::host {
namespace {

bool isAllowedSide(unsigned side) {
  return side >= LUMORA_SHORTEST_SIDE && side <= LUMORA_LONGEST_SIDE;
}

std::string text(Size size) {
  return std::to_string(size.width) + " x " + std::to_string(size.height);
}

std::string joined(const std::vector<std::string>& lines) {
  std::string all;
  for (const std::string& line : lines) all += (all.empty() ? "" : "; ") + line;
  return all;
}

}  // namespace

Result checkPicture(const ModeFacts& mode, std::uint32_t format, Size size) {
  if (!isAllowedSide(size.width) || !isAllowedSide(size.height)) {
    return trouble(Trouble::kArgument, "is " + text(size) + " pixels; looks need " +
                                           std::to_string(LUMORA_SHORTEST_SIDE) + " to " +
                                           std::to_string(LUMORA_LONGEST_SIDE) +
                                           " pixels on either side");
  }
  if (format == LUMORA_FORMAT_RGBA) return {};
  if (mode.rgbaOnly) {
    return trouble(Trouble::kArgument,
                   std::string("the look ") + mode.name + " exists for rgba frames only");
  }
  if (size.width % 2 != 0 || size.height % 2 != 0) {
    return trouble(Trouble::kArgument, "nv21 and nv12 frames have even sides, not " + text(size));
  }
  return {};
}

Result explain(std::uint32_t status) {
  const std::string said = joined(takeErrors());
  const std::string quote = said.empty() ? "" : " (the library says: " + said + ")";
  switch (status) {
    case LUMORA_OK:
      if (said.empty()) return {};
      return trouble(Trouble::kRefused, "the library reports trouble" + quote);
    case LUMORA_BAD_RESOURCE: return trouble(Trouble::kResource, said);
    case LUMORA_BAD_STATE:
      // The other cause of this status is no matter of memory.
      if (vectorLevel() < 0) {
        return trouble(Trouble::kRefused,
                       "this processor lacks instructions that the looks need" + quote);
      }
      return trouble(Trouble::kMemory, "not enough memory" + quote);
    case LUMORA_THREAD_FAILED:
      return trouble(Trouble::kThreads, "no worker thread could be started" + quote);
    default:
      return trouble(Trouble::kRefused,
                     "the library refused it with status " + std::to_string(status) + quote);
  }
}

// Only texture looks have anything to prepare.
Session::Purpose Session::purposeOf(const ModeFacts& mode, const std::string& resourceDir,
                                    Size size, int direction) {
  if (!mode.texture) return {LUMORA_MODE_ANY, {}, 0, resourceDir};
  return {mode.number, size, direction, resourceDir};
}

Result Session::open(const ModeFacts& mode, const std::string& resourceDir, Size size,
                     int direction, FilterAllocator* allocator) {
  close();
  purpose_ = purposeOf(mode, resourceDir, size, direction);
  FilterInitParamApp init{};
  init.eMode = purpose_.texturedMode;
  init.width = purpose_.size.width;
  init.height = purpose_.size.height;
  init.eDirection = static_cast<std::uint32_t>(direction);
  init.pcResourceDir = resourceDir.c_str();
  init.pstAllocator = allocator;
  takeErrors();
  Result result = explain(filterInit_APP(&handle_, &init));
  if (!result) close();
  if (result.trouble == Trouble::kResource) {
    result.message = resourceDir + kPackName +
                     " is no usable texture pack (the library says: " + result.message + ")";
  }
  return result;
}

Result Session::prepare(const ModeFacts& mode, const std::string& resourceDir, Size size,
                        int direction) {
  if (isOpen() && purpose_ == purposeOf(mode, resourceDir, size, direction)) return {};
  return open(mode, resourceDir, size, direction);
}

void Session::close() { filterDestroy(&handle_); }

Result Session::apply(const ModeFacts& mode, const Settings& settings, const FilterImage& picture) {
  FilterAlbumParam record;
  if (Result made = makeRecord(mode, settings, picture, record); !made) return made;
  takeErrors();
  setFilmSeed(settings.seed);
  return explain(filterProcess_for_album(handle_, &picture, &record));
}

}  // namespace lumora::host
