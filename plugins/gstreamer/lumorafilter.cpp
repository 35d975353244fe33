#include "plugins/gstreamer/lumorafilter.h"

#include <gst/video/gstvideofilter.h>
#include <gst/video/video.h>

#include <utility>

#include "host/log.h"
#include "plugins/common/resources.h"
#include "plugins/gstreamer/frame.h"
#include "plugins/gstreamer/properties.h"

GST_DEBUG_CATEGORY_STATIC(lumora_debug);

namespace lumora::gstreamer {
namespace {

struct State {
  Properties properties;  // under the object's lock
  host::Session session;  // of the streaming thread, like all that follows
  std::vector<std::uint8_t> scratch;
};

struct Element {
  GstVideoFilter parent;
  State* state;
};

struct ElementClass {
  GstVideoFilterClass parent;
};

gpointer parentClass = nullptr;

Element& elementOf(void* object) { return *static_cast<Element*>(object); }

Properties propertiesOf(Element& element) {
  GST_OBJECT_LOCK(&element);
  Properties properties = element.state->properties;
  GST_OBJECT_UNLOCK(&element);
  return properties;
}

std::string resourceFolder(const Properties& properties) {
  if (!properties.resources.empty()) return properties.resources + "/";
  return plugin::findResources(reinterpret_cast<const void*>(&resourceFolder), LUMORA_BUILD_ROOT,
                               LUMORA_INSTALLED_RESOURCES);
}

// What has happened, in the terms that applications sort by.
std::pair<GQuark, int> errorCode(host::Trouble trouble) {
  switch (trouble) {
    case host::Trouble::kArgument: return {GST_LIBRARY_ERROR, GST_LIBRARY_ERROR_SETTINGS};
    case host::Trouble::kResource: return {GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_NOT_FOUND};
    case host::Trouble::kMemory: return {GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_NO_SPACE_LEFT};
    default: return {GST_LIBRARY_ERROR, GST_LIBRARY_ERROR_FAILED};
  }
}

void report(Element& element, const host::Result& result) {
  const auto [domain, code] = errorCode(result.trouble);
  gst_element_message_full(GST_ELEMENT(&element), GST_MESSAGE_ERROR, domain, code,
                           g_strdup(result.message.c_str()), nullptr, __FILE__, GST_FUNCTION,
                           __LINE__);
}

host::Size sizeOf(const GstVideoInfo& info) {
  return {static_cast<unsigned>(GST_VIDEO_INFO_WIDTH(&info)),
          static_cast<unsigned>(GST_VIDEO_INFO_HEIGHT(&info))};
}

host::Result prepare(Element& element, const Properties& properties, const GstVideoInfo& info) {
  const ModeFacts& mode = *properties.mode;
  if (host::Result fits = host::checkPicture(mode, formatOf(info), sizeOf(info)); !fits) {
    fits.message = "a frame " + fits.message;
    return fits;
  }
  return element.state->session.prepare(mode, resourceFolder(properties), sizeOf(info),
                                        properties.direction);
}

void setObjectProperty(GObject* object, guint id, const GValue* value, GParamSpec* spec) {
  Element& element = elementOf(object);
  GST_OBJECT_LOCK(object);
  Properties& properties = element.state->properties;
  const bool wasRgbaOnly = properties.mode->rgbaOnly;
  const bool isKnown = setProperty(properties, id, value);
  const bool isRgbaOnly = properties.mode->rgbaOnly;
  GST_OBJECT_UNLOCK(object);
  if (!isKnown) G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, spec);
  // The formats that upstream may send are others now.
  if (isRgbaOnly != wasRgbaOnly) gst_base_transform_reconfigure_sink(GST_BASE_TRANSFORM(object));
}

void getObjectProperty(GObject* object, guint id, GValue* value, GParamSpec* spec) {
  if (!getProperty(propertiesOf(elementOf(object)), id, value)) {
    G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, spec);
  }
}

void finalize(GObject* object) {
  delete elementOf(object).state;
  G_OBJECT_CLASS(parentClass)->finalize(object);
}

GstCaps* transformCaps(GstBaseTransform* transform, GstPadDirection, GstCaps* caps,
                       GstCaps* filter) {
  GstCaps* result = gst_caps_ref(caps);
  const auto keepOnly = [&result](GstCaps* others) {
    GstCaps* const both = gst_caps_intersect_full(others, result, GST_CAPS_INTERSECT_FIRST);
    gst_caps_unref(result);
    result = both;
  };
  if (propertiesOf(elementOf(transform)).mode->rgbaOnly) {
    GstCaps* const rgba =
        gst_caps_new_simple("video/x-raw", "format", G_TYPE_STRING, "RGBA", nullptr);
    keepOnly(rgba);
    gst_caps_unref(rgba);
  }
  if (filter != nullptr) keepOnly(filter);
  return result;
}

// Strides and planes in places of their own would have to be copied: upstream, which then writes
// the usual layout, can do without.
gboolean proposeAllocation(GstBaseTransform* transform, GstQuery* decided, GstQuery* query) {
  if (!GST_BASE_TRANSFORM_CLASS(parentClass)->propose_allocation(transform, decided, query)) {
    return FALSE;
  }
  if (GST_VIDEO_INFO_N_PLANES(&GST_VIDEO_FILTER(transform)->in_info) == 1) return TRUE;
  guint index = 0;
  while (gst_query_find_allocation_meta(query, GST_VIDEO_META_API_TYPE, &index)) {
    gst_query_remove_nth_allocation_meta(query, index);
  }
  return TRUE;
}

void beforeTransform(GstBaseTransform* transform, GstBuffer* buffer) {
  const GstClockTime time = gst_segment_to_stream_time(&transform->segment, GST_FORMAT_TIME,
                                                       GST_BUFFER_TIMESTAMP(buffer));
  if (GST_CLOCK_TIME_IS_VALID(time)) gst_object_sync_values(GST_OBJECT(transform), time);
}

gboolean stop(GstBaseTransform* transform) {
  State& state = *elementOf(transform).state;
  state.session.close();
  state.scratch = {};
  return TRUE;
}

// A failure here would be met again at every try to negotiate: the first frame reports it, once.
gboolean setInfo(GstVideoFilter* filter, GstCaps*, GstVideoInfo* in, GstCaps*, GstVideoInfo*) {
  Element& element = elementOf(filter);
  (void)static_cast<bool>(prepare(element, propertiesOf(element), *in));
  return TRUE;
}

GstFlowReturn transformFrame(GstVideoFilter* filter, GstVideoFrame* videoFrame) {
  Element& element = elementOf(filter);
  const Properties properties = propertiesOf(element);
  host::Result result = prepare(element, properties, videoFrame->info);
  if (result) {
    Frame frame(*videoFrame, element.state->scratch);
    const host::Settings settings = properties.settings(sizeOf(videoFrame->info));
    result = element.state->session.apply(*properties.mode, settings, frame.picture());
    if (result) frame.putBack();
  }
  if (result) return GST_FLOW_OK;
  report(element, result);
  return GST_FLOW_ERROR;
}

#define LUMORA_RATE "framerate=(fraction)[0/1,2147483647/1]"
constexpr const char* kCaps =
    "video/x-raw,format=RGBA,width=[88,20000],height=[88,20000]," LUMORA_RATE
    ";"
    "video/x-raw,format={NV12,NV21},width=[88,20000,2],height=[88,20000,2]," LUMORA_RATE;

void addPad(GstElementClass* type, const char* name, GstPadDirection direction) {
  GstCaps* const caps = gst_caps_from_string(kCaps);
  gst_element_class_add_pad_template(type,
                                     gst_pad_template_new(name, direction, GST_PAD_ALWAYS, caps));
  gst_caps_unref(caps);
}

void showLine(int priority, const char* line) {
  GST_CAT_LEVEL_LOG(lumora_debug, priority >= 6 ? GST_LEVEL_ERROR : GST_LEVEL_INFO, nullptr, "%s",
                    line);
}

void initialiseClass(gpointer type, gpointer) {
  parentClass = g_type_class_peek_parent(type);
  GST_DEBUG_CATEGORY_INIT(lumora_debug, "lumorafilter", 0, "Lumora looks and the library's log");
  host::setLogSink(showLine);

  GObjectClass* const object = G_OBJECT_CLASS(type);
  object->set_property = setObjectProperty;
  object->get_property = getObjectProperty;
  object->finalize = finalize;
  installProperties(object);

  GstElementClass* const element = GST_ELEMENT_CLASS(type);
  gst_element_class_set_static_metadata(
      element, "Lumora looks", "Filter/Effect/Video",
      "Gives video one of twenty looks and effects, in place. Places and lengths are shares of the "
      "picture, so that they hold at every size. NV12 and NV21 are taken as full-range BT.601.",
      "the lumora_filters contributors");
  addPad(element, "sink", GST_PAD_SINK);
  addPad(element, "src", GST_PAD_SRC);

  GstBaseTransformClass* const transform = GST_BASE_TRANSFORM_CLASS(type);
  transform->transform_caps = transformCaps;
  transform->propose_allocation = proposeAllocation;
  transform->before_transform = beforeTransform;
  transform->stop = stop;

  GstVideoFilterClass* const filter = GST_VIDEO_FILTER_CLASS(type);
  filter->set_info = setInfo;
  filter->transform_frame_ip = transformFrame;
}

void initialiseElement(GTypeInstance* instance, gpointer) { elementOf(instance).state = new State; }

}  // namespace
}  // namespace lumora::gstreamer

GType lumora_filter_get_type() {
  using namespace lumora::gstreamer;
  static const GType type = g_type_register_static_simple(
      GST_TYPE_VIDEO_FILTER, "LumoraFilter", sizeof(ElementClass), initialiseClass, sizeof(Element),
      initialiseElement, static_cast<GTypeFlags>(0));
  return type;
}
