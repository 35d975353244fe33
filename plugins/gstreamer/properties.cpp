#include "plugins/gstreamer/properties.h"

namespace lumora::gstreamer {
namespace {

enum Property : unsigned {
  kNoProperty,
  kLook,
  kStrength,
  kDirectionProperty,
  kResources,
  kColourProperty,
  kToleranceProperty,
  kCoreProperty,
  kSingleThread,
  kFirstShare
};

constexpr auto kPlain = static_cast<GParamFlags>(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS);
constexpr auto kWhilePlaying =
    static_cast<GParamFlags>(kPlain | GST_PARAM_MUTABLE_PLAYING | GST_PARAM_CONTROLLABLE);

GType lookType() {
  static const GType type = [] {
    static GEnumValue values[kModeCount + 1] = {};
    for (const ModeFacts& mode : kModes) {
      values[mode.number - 1] = {static_cast<int>(mode.number), mode.summary, mode.name};
    }
    return g_enum_register_static("LumoraLook", values);
  }();
  return type;
}

void installInteger(GObjectClass* type, Property id, const char* name, const char* nick,
                    const char* help, int highest, int standard) {
  g_object_class_install_property(
      type, id, g_param_spec_int(name, nick, help, 0, highest, standard, kWhilePlaying));
}

void installShares(GObjectClass* type) {
  for (unsigned i = 0; i < plugin::kShareCount; ++i) {
    const plugin::ShareFacts& share = plugin::kShares[i];
    g_object_class_install_property(
        type, kFirstShare + i,
        g_param_spec_double(share.name, share.name, share.help, share.lowest, share.highest,
                            share.standard, kWhilePlaying));
  }
}

}  // namespace

void installProperties(GObjectClass* type) {
  const Properties standard;
  g_object_class_install_property(
      type, kLook,
      g_param_spec_enum("look", "Look", "which of the looks and effects", lookType(),
                        static_cast<int>(standard.mode->number), kWhilePlaying));
  installInteger(
      type, kStrength, "strength", "Strength",
      "16 is the full effect, 0 the weakest; what lies above depends on the look; for blur "
      "and tilt-shift how wide the blur is",
      LUMORA_STRONGEST, standard.strength);
  installInteger(
      type, kDirectionProperty, "direction", "Direction",
      "how the camera was held, in quarter turns; the light leak of lianghong turns with it", 3,
      standard.direction);
  g_object_class_install_property(
      type, kResources,
      g_param_spec_string(
          "resources", "Resources",
          "folder with the texture pack mixIm.dat and, optionally, the tuning document "
          "filter.xml; by default the installed ones",
          nullptr, static_cast<GParamFlags>(kPlain | GST_PARAM_MUTABLE_READY)));
  g_object_class_install_property(
      type, kColourProperty,
      g_param_spec_uint("colour", "Colour", "the colour that colour-fix keeps, as 0xRRGGBB", 0,
                        0xffffff, standard.colour, kWhilePlaying));
  installInteger(type, kToleranceProperty, "tolerance", "Tolerance",
                 "how far a hue may be off the colour and stay, of 255", 255, standard.tolerance);
  installInteger(type, kCoreProperty, "core", "Core",
                 "entirely sharp share of tilt-shift's band, in 1/32", LUMORA_STRONGEST,
                 standard.core);
  g_object_class_install_property(
      type, kSingleThread,
      g_param_spec_boolean(
          "single-thread", "Single thread",
          "work in the streaming thread alone; otherwise in four threads a step, and "
          "the library writes two lines to standard output for every NV12 frame",
          standard.singleThread, static_cast<GParamFlags>(kPlain | GST_PARAM_MUTABLE_PLAYING)));
  installShares(type);
}

bool setProperty(Properties& p, unsigned id, const GValue* value) {
  switch (id) {
    case kLook: p.mode = findModeFacts(static_cast<unsigned>(g_value_get_enum(value))); break;
    case kStrength: p.strength = g_value_get_int(value); break;
    case kDirectionProperty: p.direction = g_value_get_int(value); break;
    case kResources: {
      const char* const folder = g_value_get_string(value);
      p.resources = folder == nullptr ? "" : folder;
      break;
    }
    case kColourProperty: p.colour = g_value_get_uint(value); break;
    case kToleranceProperty: p.tolerance = g_value_get_int(value); break;
    case kCoreProperty: p.core = g_value_get_int(value); break;
    case kSingleThread: p.singleThread = g_value_get_boolean(value) != FALSE; break;
    default:
      if (id < kFirstShare || id - kFirstShare >= plugin::kShares.size()) return false;
      p.shares[id - kFirstShare] = g_value_get_double(value);
  }
  return true;
}

bool getProperty(const Properties& p, unsigned id, GValue* value) {
  switch (id) {
    case kLook: g_value_set_enum(value, static_cast<int>(p.mode->number)); break;
    case kStrength: g_value_set_int(value, p.strength); break;
    case kDirectionProperty: g_value_set_int(value, p.direction); break;
    case kResources:
      g_value_set_string(value, p.resources.empty() ? nullptr : p.resources.c_str());
      break;
    case kColourProperty: g_value_set_uint(value, p.colour); break;
    case kToleranceProperty: g_value_set_int(value, p.tolerance); break;
    case kCoreProperty: g_value_set_int(value, p.core); break;
    case kSingleThread: g_value_set_boolean(value, p.singleThread); break;
    default:
      if (id < kFirstShare || id - kFirstShare >= plugin::kShares.size()) return false;
      g_value_set_double(value, p.shares[id - kFirstShare]);
  }
  return true;
}

host::Settings Properties::settings(host::Size picture) const {
  host::Settings settings;
  settings.strength = strength;
  settings.direction = direction;
  settings.tolerance = tolerance;
  settings.core = core;
  settings.colour = {static_cast<std::uint8_t>(colour >> 16),
                     static_cast<std::uint8_t>(colour >> 8), static_cast<std::uint8_t>(colour)};
  settings.singleThread = singleThread;
  plugin::place(settings, shares, picture);
  return settings;
}

}  // namespace lumora::gstreamer
