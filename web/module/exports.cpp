// What the package's loader calls. One call at a time; texts end with a 0 and are valid until the
// next call. A function that can fail gives 0, and lumora_error() the reason.
#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "facts_json.h"
#include "host/session.h"

#define LUMORA_EXPORT extern "C" __attribute__((used, visibility("default")))

using namespace lumora;
using host::Result;
using host::Session;
using host::Settings;
using host::Trouble;

namespace {

std::string lastError;

bool succeeded(const Result& result) {
  lastError = result.message;
  return static_cast<bool>(result);
}

// For std::free(); null when there is none.
std::uint8_t* allocate(std::uint64_t bytes) {
  if (bytes > UINT32_MAX) return nullptr;
  return static_cast<std::uint8_t*>(std::malloc(static_cast<std::size_t>(bytes)));
}

// A container aborts where it finds no memory, so it is asked for beforehand.
bool hasMemory(std::uint64_t bytes) {
  std::uint8_t* const block = allocate(bytes);
  std::free(block);
  return block != nullptr;
}

// One look on pictures of one kind, with the memory of one such picture.
struct Filter {
  const ModeFacts& mode;
  std::uint32_t format;
  host::Size size;
  bool prepared;  // textures are kept at the picture's size
  Settings settings;
  Settings next;  // being given
  Session own;    // of a prepared filter
  int direction = -1;
  std::unique_ptr<std::uint8_t, decltype(&std::free)> pixels{nullptr, &std::free};

  std::uint64_t pictureBytes() const {
    const std::uint64_t pixelCount = std::uint64_t{size.width} * size.height;
    return format == LUMORA_FORMAT_RGBA ? 4 * pixelCount : pixelCount / 2 * 3;
  }
  FilterImage picture() const {
    const std::uint32_t stride = format == LUMORA_FORMAT_RGBA ? 4 * size.width : size.width;
    return {format, pixels.get(), size.width, size.height, static_cast<std::int32_t>(stride)};
  }
};

// For every look on every size, with the textures as the pack stores them.
Session common;

Result openCommon() {
  if (common.isOpen()) return {};
  // A look without textures asks for a handle for any mode.
  return common.open(kModes[LUMORA_MODE_MORAN - 1], "");
}

Result openFor(Filter& filter) {
  if (!filter.prepared) return openCommon();
  if (filter.own.isOpen() && filter.direction == filter.settings.direction) return {};
  filter.direction = filter.settings.direction;
  return filter.own.open(filter.mode, "", filter.size, filter.direction);
}

Result checkStrength(int strength) {
  if (strength >= 0 && strength <= LUMORA_STRONGEST) return {};
  return host::trouble(Trouble::kArgument, std::to_string(strength) + " is outside 0.." +
                                               std::to_string(LUMORA_STRONGEST) + " of strength");
}

}  // namespace

LUMORA_EXPORT const char* lumora_facts() {
  static const std::string facts = web::factsJson();
  return facts.c_str();
}

LUMORA_EXPORT const char* lumora_error() { return lastError.c_str(); }

// Call when the loader has got the pack's bytes: from then on calls have its textures.
LUMORA_EXPORT bool lumora_pack_changed() {
  common.close();
  return succeeded(openCommon());
}

// A filter with the settings' defaults, for lumora_close(). mode: 1..20; format, width and height
// as in the library's picture. keepTextures: for many pictures of this size, else for single ones.
LUMORA_EXPORT Filter* lumora_open(std::uint32_t mode, std::uint32_t format, std::uint32_t width,
                                  std::uint32_t height, bool keepTextures) {
  const ModeFacts& facts = *findModeFacts(mode);
  Result checked = host::checkPicture(facts, format, {width, height});
  if (checked.message.starts_with("is ")) checked.message = "the picture " + checked.message;
  if (!succeeded(checked)) return nullptr;
  auto filter = std::unique_ptr<Filter>(new (std::nothrow) Filter{
      facts, format, {width, height}, keepTextures && facts.texture, {}, {}, {}});
  if (filter != nullptr) filter->pixels.reset(allocate(filter->pictureBytes()));
  if (filter != nullptr && filter->pixels != nullptr) return filter.release();
  lastError = "not enough memory for a picture of " + std::to_string(width) + " x " +
              std::to_string(height) + " pixels";
  return nullptr;
}

LUMORA_EXPORT void lumora_close(Filter* filter) { delete filter; }

// The memory for the picture, packed rows. It may move whenever memory grows, seen from outside.
LUMORA_EXPORT std::uint8_t* lumora_pixels(Filter* filter) { return filter->pixels.get(); }

// Settings are given one by one between begin and commit, which alone changes the filter. What is
// not given has its default.
LUMORA_EXPORT void lumora_begin(Filter* filter) { filter->next = {}; }

LUMORA_EXPORT bool lumora_give_strength(Filter* filter, int strength) {
  filter->next.strength = strength;
  return succeeded(checkStrength(strength));
}

// count numbers, at most 4.
LUMORA_EXPORT bool lumora_give(Filter* filter, std::uint32_t setting, std::uint32_t count, int a,
                               int b, int c, int d) {
  const int numbers[] = {a, b, c, d};
  return succeeded(host::give(filter->next, static_cast<Setting>(setting),
                              std::vector<int>(numbers, numbers + count)));
}

// Memory for the mask's samples; null when there is none.
LUMORA_EXPORT std::uint8_t* lumora_give_mask(Filter* filter, int width, int height) {
  const std::uint64_t bytes = std::uint64_t(width) * std::uint64_t(height);
  if (!hasMemory(bytes)) {
    lastError = "not enough memory for the mask";
    return nullptr;
  }
  filter->next.mask = {std::vector<std::uint8_t>(static_cast<std::size_t>(bytes)), width, height};
  return filter->next.mask.samples.data();
}

LUMORA_EXPORT bool lumora_commit(Filter* filter) {
  if (!succeeded(host::checkComplete(filter->mode, filter->next))) return false;
  std::swap(filter->settings, filter->next);
  if (succeeded(openFor(*filter))) return true;
  std::swap(filter->settings, filter->next);
  return false;
}

// Rewrites the picture in the filter's memory.
LUMORA_EXPORT bool lumora_process(Filter* filter) {
  if (!succeeded(openFor(*filter))) return false;
  Session& session = filter->prepared ? filter->own : common;
  return succeeded(session.apply(filter->mode, filter->settings, filter->picture()));
}
