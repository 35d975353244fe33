// The element lumorafilter.
#pragma once

#include <gst/gst.h>

G_BEGIN_DECLS

GType lumora_filter_get_type(void);

G_END_DECLS
