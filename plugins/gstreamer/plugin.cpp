// What GStreamer loads.
#include "plugins/gstreamer/lumorafilter.h"

namespace {

gboolean registerElements(GstPlugin* plugin) {
  return gst_element_register(plugin, "lumorafilter", GST_RANK_NONE, lumora_filter_get_type());
}

}  // namespace

#define PACKAGE "lumora-filters"
GST_PLUGIN_DEFINE(GST_VERSION_MAJOR, GST_VERSION_MINOR, lumora, "Looks and effects for video",
                  registerElements, LUMORA_VERSION, "Apache 2.0", "lumora filters",
                  "https://lumora-filters.invalid")
