// The element's properties, and the settings that they amount to.
#pragma once

#include <gst/gst.h>

#include <string>

#include "modes/modes.h"
#include "plugins/common/shares.h"

namespace lumora::gstreamer {

struct Properties {
  const ModeFacts* mode = findModeFacts(LUMORA_MODE_HEIBAI);
  int strength = LUMORA_FULL_STRENGTH;
  int direction = kSettings[kDirection].standard;
  int tolerance = kSettings[kTolerance].standard;
  int core = kSettings[kCore].standard;
  unsigned colour = 0xff0000;  // 0xRRGGBB
  bool singleThread = true;
  std::string resources;  // a folder; empty: the installed one
  plugin::Shares shares = plugin::standardShares();

  host::Settings settings(host::Size picture) const;
};

void installProperties(GObjectClass* type);
// False for a property that there is none of.
bool setProperty(Properties& properties, unsigned id, const GValue* value);
bool getProperty(const Properties& properties, unsigned id, GValue* value);

}  // namespace lumora::gstreamer
