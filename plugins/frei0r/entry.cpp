// What a host calls in a plug-in. Compiled once for every mode, LUMORA_PLUGIN_MODE.
#include "plugins/frei0r/effect.h"

using lumora::frei0r::Effect;

#define ENTRY extern "C" LUMORA_FREI0R_API

ENTRY int f0r_init() { return 1; }

ENTRY void f0r_deinit() {}

ENTRY void f0r_get_plugin_info(f0r_plugin_info_t* info) {
  lumora::frei0r::describe(LUMORA_PLUGIN_MODE, *info);
}

ENTRY void f0r_get_param_info(f0r_param_info_t* info, int index) {
  lumora::frei0r::describeParameter(LUMORA_PLUGIN_MODE, index, *info);
}

ENTRY f0r_instance_t f0r_construct(unsigned width, unsigned height) {
  return Effect::make(LUMORA_PLUGIN_MODE, width, height).release();
}

ENTRY void f0r_destruct(f0r_instance_t instance) { delete static_cast<Effect*>(instance); }

ENTRY void f0r_set_param_value(f0r_instance_t instance, f0r_param_t value, int index) {
  static_cast<Effect*>(instance)->set(index, value);
}

ENTRY void f0r_get_param_value(f0r_instance_t instance, f0r_param_t value, int index) {
  static_cast<const Effect*>(instance)->get(index, value);
}

ENTRY void f0r_update(f0r_instance_t instance, double /*seconds*/, const uint32_t* in,
                      uint32_t* out) {
  static_cast<Effect*>(instance)->update(in, out);
}
