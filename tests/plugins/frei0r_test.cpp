// The frei0r plug-ins, loaded as a host loads them.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <limits>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "plugin_test.h"
#include "plugins/frei0r/frei0r_header.h"

namespace lumora::test {
namespace {

using Pixels = std::vector<std::uint32_t>;

Pixels noisePixels(unsigned width, unsigned height) {
  Pixels pixels(std::size_t{width} * height);
  const Bytes bytes = noise(4 * pixels.size());
  std::memcpy(pixels.data(), bytes.data(), bytes.size());
  return pixels;
}

std::string fileName(const ModeFacts& mode) {
  std::string name = std::string("lumora_") + mode.name;
  for (char& c : name) c = c == '-' ? '_' : c;
  return name + ".so";
}

class Plugin {
 public:
  explicit Plugin(const ModeFacts& mode)
      : library_(::dlopen((LUMORA_FREI0R_FOLDER "/" + fileName(mode)).c_str(), RTLD_NOW)) {
    if (library_ == nullptr) throw std::runtime_error(::dlerror());
    find(init, "f0r_init");
    find(getInfo, "f0r_get_plugin_info");
    find(getParameterInfo, "f0r_get_param_info");
    find(construct, "f0r_construct");
    find(destruct, "f0r_destruct");
    find(set, "f0r_set_param_value");
    find(get, "f0r_get_param_value");
    find(update, "f0r_update");
    find(deinit, "f0r_deinit");
    init();
  }
  ~Plugin() {
    deinit();
    ::dlclose(library_);
  }
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;

  f0r_plugin_info_t info() const {
    f0r_plugin_info_t info{};
    getInfo(&info);
    return info;
  }
  f0r_param_info_t parameter(int index) const {
    f0r_param_info_t info{};
    getParameterInfo(&info, index);
    return info;
  }
  int indexOf(const std::string& name) const {
    for (int i = 0; i < info().num_params; ++i) {
      if (parameter(i).name == name) return i;
    }
    throw std::runtime_error("no parameter " + name);
  }

  decltype(&f0r_init) init;
  decltype(&f0r_get_plugin_info) getInfo;
  decltype(&f0r_get_param_info) getParameterInfo;
  decltype(&f0r_construct) construct;
  decltype(&f0r_destruct) destruct;
  decltype(&f0r_set_param_value) set;
  decltype(&f0r_get_param_value) get;
  decltype(&f0r_update) update;
  decltype(&f0r_deinit) deinit;

 private:
  template <class Function>
  void find(Function& function, const char* name) {
    function = reinterpret_cast<Function>(::dlsym(library_, name));
    if (function == nullptr) throw std::runtime_error(::dlerror());
  }

  void* library_;
};

class Instance {
 public:
  Instance(const Plugin& plugin, unsigned width, unsigned height)
      : plugin_(plugin), instance_(plugin.construct(width, height)) {
    if (instance_ == nullptr) throw std::runtime_error("no instance");
  }
  ~Instance() { plugin_.destruct(instance_); }
  Instance(const Instance&) = delete;
  Instance& operator=(const Instance&) = delete;

  template <class Value>
  void set(int index, Value value) {
    plugin_.set(instance_, &value, index);
  }
  template <class Value>
  Value get(int index) const {
    Value value{};
    plugin_.get(instance_, &value, index);
    return value;
  }
  Pixels update(const Pixels& in) {
    Pixels out(in.size());
    plugin_.update(instance_, 0, in.data(), out.data());
    return out;
  }

 private:
  const Plugin& plugin_;
  f0r_instance_t instance_;
};

// The same by the library.
Pixels filtered(host::Session& session, const ModeFacts& mode, const host::Settings& settings,
                unsigned width, unsigned height) {
  Pixels pixels = noisePixels(width, height);
  filterByLibrary(session, mode, settings,
                  {LUMORA_FORMAT_RGBA, reinterpret_cast<std::uint8_t*>(pixels.data()), width,
                   height, static_cast<std::int32_t>(4 * width)});
  return pixels;
}

TEST(Frei0r, EveryModeIntroducesItself) {
  std::set<std::string> names;
  for (const ModeFacts& mode : kModes) {
    const Plugin plugin(mode);
    const f0r_plugin_info_t info = plugin.info();
    EXPECT_TRUE(names.insert(info.name).second) << info.name;
    EXPECT_NE(std::string(info.name).find(mode.name), std::string::npos);
    EXPECT_EQ(std::string(info.explanation).find(mode.summary), 0u);
    EXPECT_STRNE(info.author, "");
    EXPECT_EQ(info.plugin_type, F0R_PLUGIN_TYPE_FILTER);
    EXPECT_EQ(info.color_model, F0R_COLOR_MODEL_RGBA8888);
    EXPECT_EQ(info.frei0r_version, FREI0R_MAJOR_VERSION);
    std::set<std::string> parameters;
    for (int i = 0; i < info.num_params; ++i) {
      EXPECT_STRNE(plugin.parameter(i).explanation, "");
      EXPECT_TRUE(parameters.insert(plugin.parameter(i).name).second);
    }
    EXPECT_EQ(plugin.parameter(info.num_params).name, nullptr);
    EXPECT_EQ(parameters.contains("strength"), mode.strength != StrengthUse::kUnused) << mode.name;
    EXPECT_EQ(parameters.contains("direction"), mode.reads(kDirection)) << mode.name;
    EXPECT_EQ(parameters.contains("rect-x") && parameters.contains("block"), mode.reads(kRect));
    EXPECT_EQ(parameters.contains("colour") && parameters.contains("tolerance"),
              mode.reads(kColour));
    EXPECT_EQ(parameters.contains("centre-y") && parameters.contains("outer-radius"),
              mode.reads(kCentre));
    EXPECT_EQ(parameters.contains("band-y2") && parameters.contains("core"), mode.reads(kBand));
  }
}

TEST(Frei0r, LooksEqualTheLibraryAtEveryStrengthAndSize) {
  for (const ModeFacts& mode : kModes) {
    if (mode.settings != 0) continue;
    const Plugin plugin(mode);
    for (const auto& [width, height] : {std::pair{88u, 88u}, {131u, 97u}}) {
      host::Session session;
      auto instance = std::make_unique<Instance>(plugin, width, height);
      EXPECT_EQ(instance->get<double>(0), 0.5);
      for (const int strength : {16, 9, 32}) {
        // The film's marks grow from frame to frame: only a first one has something to equal.
        if (mode.number == LUMORA_MODE_LAODIANYING) {
          session.close();
          instance = std::make_unique<Instance>(plugin, width, height);
        }
        instance->set(0, strength / 32.0);
        host::Settings settings;
        settings.strength = strength;
        EXPECT_EQ(instance->update(noisePixels(width, height)),
                  filtered(session, mode, settings, width, height))
            << mode.name << ' ' << strength;
      }
    }
  }
}

TEST(Frei0r, EffectsTakeTheirSettingsAsShares) {
  constexpr unsigned kWidth = 400, kHeight = 200;
  std::vector<ShareCase> cases = shareCases();
  host::Settings settings;
  settings.strength = 32;
  cases.push_back({LUMORA_MODE_BLUR, {{"strength", 1}}, settings});
  settings = {};
  settings.core = 8;
  cases.push_back({LUMORA_MODE_TILT_SHIFT, {{"core", 0.25}}, settings});
  settings = {};
  settings.colour = {0, 128, 255};
  settings.tolerance = 51;
  cases.push_back({LUMORA_MODE_COLOUR_FIX, {{"tolerance", 0.2}}, settings});
  settings = {};
  settings.direction = 3;
  cases.push_back({LUMORA_MODE_LIANGHONG, {{"direction", 0.75}}, settings});

  host::Session session;
  for (const ShareCase& c : cases) {
    const ModeFacts& mode = *findModeFacts(c.mode);
    const Plugin plugin(mode);
    Instance instance(plugin, kWidth, kHeight);
    for (const auto& [name, value] : c.given) instance.set(plugin.indexOf(name), value);
    if (mode.reads(kColour)) {
      instance.set(plugin.indexOf("colour"), f0r_param_color_t{0, 0.502f, 1});
      EXPECT_NEAR(instance.get<f0r_param_color_t>(plugin.indexOf("colour")).g, 0.502, 1e-6);
    }
    EXPECT_EQ(instance.update(noisePixels(kWidth, kHeight)),
              filtered(session, mode, c.expected, kWidth, kHeight))
        << mode.name;
  }
}

TEST(Frei0r, PicturesThatNoLookTakesPassUnchanged) {
  for (const ModeFacts& mode : kModes) {
    const Plugin plugin(mode);
    for (const auto& [width, height] :
         {std::pair{87u, 300u}, {300u, 87u}, {8u, 8u}, {20001u, 88u}}) {
      Instance instance(plugin, width, height);
      const Pixels in = noisePixels(width, height);
      EXPECT_EQ(instance.update(in), in) << mode.name << ' ' << width << " x " << height;
    }
  }
}

TEST(Frei0r, ParameterNoiseDoesNoHarm) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  for (const ModeFacts& mode : kModes) {
    const Plugin plugin(mode);
    Instance instance(plugin, 97, 131);
    const Pixels in = noisePixels(97, 131);
    Pixels last;
    for (const double value : {-kInfinity, -1e300, -0.1, 1e-300, 0.3, 1.0, 7.0, 1e300, kInfinity}) {
      for (int i = -1; i <= plugin.info().num_params; ++i) {
        const auto part = static_cast<float>(value);
        if (i >= 0 && plugin.parameter(i).type == F0R_PARAM_COLOR) {
          instance.set(i, f0r_param_color_t{part, part, part});
        } else {
          instance.set(i, value);
        }
      }
      last = instance.update(in);
    }
    // Not a number: as it was.
    for (int i = 0; i < plugin.info().num_params; ++i) {
      const auto none = std::numeric_limits<float>::quiet_NaN();
      if (plugin.parameter(i).type == F0R_PARAM_COLOR) {
        instance.set(i, f0r_param_color_t{none, none, none});
      } else {
        instance.set(i, double{none});
      }
    }
    if (mode.number == LUMORA_MODE_LAODIANYING) continue;  // draws new marks
    EXPECT_EQ(instance.update(in), last) << mode.name;
  }
}

TEST(Frei0r, HundredsOfInstancesInSeveralThreadsKeepToThemselves) {
  const ModeFacts& mode = *findModeFacts(LUMORA_MODE_LIANGHONG);
  const Plugin plugin(mode);
  const Pixels in = noisePixels(160, 96);
  std::vector<Pixels> expected;
  for (int direction = 0; direction < 4; ++direction) {
    host::Settings settings;
    settings.direction = direction;
    host::Session session;
    expected.push_back(filtered(session, mode, settings, 160, 96));
  }
  const auto work = [&](int first) {
    std::vector<std::unique_ptr<Instance>> instances;
    for (int i = 0; i < 100; ++i) {
      instances.push_back(std::make_unique<Instance>(plugin, 160, 96));
      instances.back()->set(plugin.indexOf("direction"), (first + i) % 4 * 0.25);
    }
    for (int i = 0; i < 100; ++i) EXPECT_EQ(instances[i]->update(in), expected[(first + i) % 4]);
  };
  std::thread other(work, 1);
  work(0);
  other.join();
}

}  // namespace
}  // namespace lumora::test
