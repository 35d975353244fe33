#include "plugins/frei0r/effect.h"

#include <cstdio>
#include <cstring>
#include <new>
#include <string>

#include "plugins/common/resources.h"

namespace lumora::frei0r {
namespace {

struct Text {
  std::string name;
  std::string explanation;
};

Text makeText(const ModeFacts& mode) {
  const std::string alias = mode.alias == nullptr ? "" : std::string(" (") + mode.alias + ")";
  return {std::string("Lumora ") + mode.name, mode.summary + alias};
}

// Hosts keep the addresses.
const Text& textOf(const ModeFacts& mode) {
  static const auto texts = [] {
    std::array<Text, kModeCount> made;
    for (const ModeFacts& each : kModes) made[each.number - 1] = makeText(each);
    return made;
  }();
  return texts[mode.number - 1];
}

const std::string& resources() {
  static const std::string folder = plugin::findResources(
      reinterpret_cast<const void*>(&describe), LUMORA_BUILD_ROOT, LUMORA_INSTALLED_RESOURCES);
  return folder;
}

void complain(const ModeFacts& mode, const std::string& message) {
  std::fprintf(stderr, "%s: %s\n", textOf(mode).name.c_str(), message.c_str());
}

}  // namespace

void describe(std::uint32_t number, f0r_plugin_info_t& info) {
  const ModeFacts& mode = *findModeFacts(number);
  info = {textOf(mode).name.c_str(),
          "the lumora_filters contributors",
          F0R_PLUGIN_TYPE_FILTER,
          F0R_COLOR_MODEL_RGBA8888,
          FREI0R_MAJOR_VERSION,
          LUMORA_VERSION_MAJOR,
          LUMORA_VERSION_MINOR,
          parameterCount(mode),
          textOf(mode).explanation.c_str()};
}

void describeParameter(std::uint32_t mode, int index, f0r_param_info_t& info) {
  const Parameter* const parameter = findParameter(*findModeFacts(mode), index);
  if (parameter == nullptr) return;
  info = {parameter->name, parameter->type, parameter->explanation};
}

std::unique_ptr<Effect> Effect::make(std::uint32_t number, unsigned width, unsigned height) {
  const ModeFacts& mode = *findModeFacts(number);
  std::unique_ptr<Effect> effect(new (std::nothrow) Effect(mode, {width, height}));
  if (effect == nullptr) return nullptr;
  const host::Result prepared = effect->prepare(kSettings[kDirection].standard);
  if (prepared) return effect;
  complain(mode, prepared.message);
  return nullptr;
}

Effect::~Effect() = default;

// Nothing to prepare for pictures that are passed on.
host::Result Effect::prepare(int direction) {
  if (!host::checkPicture(mode_, LUMORA_FORMAT_RGBA, size_)) return {};
  return session_.prepare(mode_, resources(), size_, direction);
}

void Effect::set(int index, const void* value) {
  const Parameter* const parameter = findParameter(mode_, index);
  if (parameter != nullptr) parameters_.set(*parameter, value);
}

void Effect::get(int index, void* value) const {
  const Parameter* const parameter = findParameter(mode_, index);
  if (parameter != nullptr) parameters_.get(*parameter, value);
}

host::Result Effect::filter(std::uint32_t* pixels) {
  const FilterImage picture{LUMORA_FORMAT_RGBA, reinterpret_cast<std::uint8_t*>(pixels),
                            size_.width, size_.height, static_cast<std::int32_t>(4 * size_.width)};
  host::Settings settings = parameters_.settings(size_);
  // Hosts work on several frames or effects at a time by themselves.
  settings.singleThread = true;
  if (host::Result prepared = prepare(settings.direction); !prepared) return prepared;
  return session_.apply(mode_, settings, picture);
}

void Effect::update(const std::uint32_t* in, std::uint32_t* out) {
  const std::size_t bytes = std::size_t{4} * size_.width * size_.height;
  std::memcpy(out, in, bytes);
  if (!host::checkPicture(mode_, LUMORA_FORMAT_RGBA, size_)) return;
  const host::Result filtered = filter(out);
  if (filtered) return;
  std::memcpy(out, in, bytes);
  if (!hasComplained_) complain(mode_, filtered.message);
  hasComplained_ = true;
}

}  // namespace lumora::frei0r
