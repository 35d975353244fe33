// The element lumorafilter, with frames pushed through it one by one.
#include <gst/check/gstharness.h>
#include <gst/controller/controller.h>
#include <gst/video/video.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <cstring>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

#include "plugin_test.h"

namespace lumora::test {
namespace {

struct Format {
  const char* name;
  GstVideoFormat video;
  std::uint32_t picture;
  int bytesPerPixel;
  int planes;
};
constexpr Format kRgba{"RGBA", GST_VIDEO_FORMAT_RGBA, LUMORA_FORMAT_RGBA, 4, 1};
constexpr Format kNv12{"NV12", GST_VIDEO_FORMAT_NV12, LUMORA_FORMAT_NV12, 1, 2};
constexpr Format kNv21{"NV21", GST_VIDEO_FORMAT_NV21, LUMORA_FORMAT_NV21, 1, 2};

// How the planes of a frame lie in its buffer.
struct Layout {
  int extraStride[2];  // beyond the width, per plane
  int gap;             // between the planes
};
constexpr Layout kLayouts[] = {
    {{0, 0}, 0},
    {{13, 13}, 0},  // an odd stride, in place
    {{0, 0}, 8},    // the second plane elsewhere: by a copy
    {{26, 4}, 0},   // strides that differ: by a copy
};

struct Frame {
  Format format;
  int width;
  int height;
  Layout layout = kLayouts[0];

  int stride(int plane) const { return width * format.bytesPerPixel + layout.extraStride[plane]; }
  int rows(int plane) const { return height >> plane; }
  std::size_t offset(int plane) const {
    return plane == 0 ? 0 : static_cast<std::size_t>(stride(0)) * height + layout.gap;
  }
  std::size_t bytes() const {
    const int last = format.planes - 1;
    return offset(last) + static_cast<std::size_t>(stride(last)) * rows(last);
  }
  std::string caps() const {
    return "video/x-raw,format=" + std::string(format.name) + ",width=" + std::to_string(width) +
           ",height=" + std::to_string(height) + ",framerate=25/1";
  }
};

template <class Step>
void forRows(const Frame& frame, Step step) {
  for (int plane = 0; plane < frame.format.planes; ++plane) {
    for (int y = 0; y < frame.rows(plane); ++y) {
      step(frame.offset(plane) + static_cast<std::size_t>(y) * frame.stride(plane));
    }
  }
}

// What the library makes of the pixels of a frame; the bytes between them as they were.
Bytes filtered(const Frame& frame, host::Session& session, const ModeFacts& mode,
               const host::Settings& settings, const Bytes& before) {
  const int row = frame.width * frame.format.bytesPerPixel;
  Bytes packed, after = before;
  forRows(frame, [&](std::size_t at) {
    packed.insert(packed.end(), before.begin() + at, before.begin() + at + row);
  });
  filterByLibrary(session, mode, settings,
                  {frame.format.picture, packed.data(), static_cast<std::uint32_t>(frame.width),
                   static_cast<std::uint32_t>(frame.height), row});
  std::size_t from = 0;
  forRows(frame, [&](std::size_t at) {
    std::memcpy(after.data() + at, packed.data() + from, row);
    from += row;
  });
  return after;
}

GstBuffer* makeBuffer(const Frame& frame, const Bytes& content, GstClockTime time = 0) {
  GstBuffer* const buffer = gst_buffer_new_memdup(content.data(), content.size());
  gsize offsets[4] = {frame.offset(0), frame.offset(1)};
  gint strides[4] = {frame.stride(0), frame.stride(1)};
  gst_buffer_add_video_meta_full(buffer, GST_VIDEO_FRAME_FLAG_NONE, frame.format.video, frame.width,
                                 frame.height, frame.format.planes, offsets, strides);
  GST_BUFFER_PTS(buffer) = time;
  return buffer;
}

class Harness {
 public:
  Harness() : harness_(gst_harness_new("lumorafilter")), bus_(gst_bus_new()) {
    gst_element_set_bus(element(), bus_);
  }
  ~Harness() {
    gst_element_set_bus(element(), nullptr);
    gst_object_unref(bus_);
    gst_harness_teardown(harness_);
  }
  Harness(const Harness&) = delete;
  Harness& operator=(const Harness&) = delete;

  GstElement* element() const { return harness_->element; }
  GstPad* sinkPad() const { return harness_->srcpad; }  // that leads into the element
  template <class Value>
  void set(const char* name, Value value) {
    g_object_set(element(), name, value, nullptr);
  }
  void setLook(const ModeFacts& mode) {
    gst_util_set_object_arg(G_OBJECT(element()), "look", mode.name);
  }
  void setCaps(const Frame& frame) { gst_harness_set_src_caps_str(harness_, frame.caps().c_str()); }
  void letDownstreamTakeVideoMeta() {
    gst_harness_add_propose_allocation_meta(harness_, GST_VIDEO_META_API_TYPE, nullptr);
  }
  GstFlowReturn push(const Frame& frame, const Bytes& content, GstClockTime time = 0) {
    return gst_harness_push(harness_, makeBuffer(frame, content, time));
  }
  Bytes pull() {
    GstBuffer* const buffer = gst_harness_try_pull(harness_);
    if (buffer == nullptr) return {};
    Bytes bytes(gst_buffer_get_size(buffer));
    gst_buffer_extract(buffer, 0, bytes.data(), bytes.size());
    gst_buffer_unref(buffer);
    return bytes;
  }
  Bytes run(const Frame& frame, const Bytes& content, GstClockTime time = 0) {
    EXPECT_EQ(push(frame, content, time), GST_FLOW_OK);
    return pull();
  }
  // The first error on the bus; empty for none.
  std::string error() const {
    GstMessage* const message = gst_bus_pop_filtered(bus_, GST_MESSAGE_ERROR);
    if (message == nullptr) return "";
    GError* error = nullptr;
    gst_message_parse_error(message, &error, nullptr);
    const std::string text = std::string(g_quark_to_string(error->domain)) + ": " + error->message;
    g_error_free(error);
    gst_message_unref(message);
    return text;
  }

 private:
  GstHarness* harness_;
  GstBus* bus_;
};

class GStreamer : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    // Whatever else is installed is left alone.
    ::setenv("GST_REGISTRY_DISABLE", "yes", 1);
    gst_init(nullptr, nullptr);
    GstPlugin* const plugin = gst_plugin_load_file(LUMORA_GSTREAMER_MODULE, nullptr);
    ASSERT_NE(plugin, nullptr);
    gst_object_unref(plugin);
  }
};

// From a quarter of 162 x 90 on, half as large, even; as the shares are by themselves.
host::Settings standardSettings() {
  host::Settings settings;
  settings.colour = {255, 0, 0};
  settings.rectangle = {40, 22, 80, 44};
  settings.block = 8;
  settings.radius = {23, 45};
  return settings;
}

void expectEqual(Harness& harness, host::Session& session, const ModeFacts& mode,
                 const Frame& frame) {
  harness.setLook(mode);
  harness.setCaps(frame);
  const Bytes before = noise(frame.bytes());
  EXPECT_EQ(harness.run(frame, before), filtered(frame, session, mode, standardSettings(), before))
      << mode.name << ' ' << frame.caps() << " stride " << frame.stride(0) << " gap "
      << frame.layout.gap;
  EXPECT_EQ(harness.error(), "");
}

TEST_F(GStreamer, AllModesAndFormatsEqualTheLibraryHoweverThePlanesLie) {
  for (const Format& format : {kRgba, kNv12, kNv21}) {
    for (const Layout& layout : kLayouts) {
      Harness harness;
      host::Session session;
      for (const ModeFacts& mode : kModes) {
        if (mode.rgbaOnly && format.planes > 1) continue;
        expectEqual(harness, session, mode, {format, 162, 90, layout});
      }
    }
  }
}

TEST_F(GStreamer, SizeFormatLookAndStrengthChangeInMidStream) {
  Harness harness;
  host::Session session;
  host::Settings settings;
  struct Step {
    Frame frame;
    std::uint32_t mode;
    int strength;
  };
  const Step steps[] = {
      {{kNv12, 160, 90}, LUMORA_MODE_EARLYBIRD, 16}, {{kNv12, 160, 90}, LUMORA_MODE_EARLYBIRD, 5},
      {{kNv12, 160, 90}, LUMORA_MODE_XPRO2, 5},      {{kNv12, 320, 180}, LUMORA_MODE_XPRO2, 32},
      {{kRgba, 201, 99}, LUMORA_MODE_XPRO2, 32},     {{kRgba, 201, 99}, LUMORA_MODE_COLOUR_FIX, 16},
      {{kNv21, 88, 88}, LUMORA_MODE_MORAN, 16}};
  settings.colour = {255, 0, 0};
  for (const Step& step : steps) {
    const ModeFacts& mode = *findModeFacts(step.mode);
    harness.setLook(mode);
    harness.set("strength", step.strength);
    harness.setCaps(step.frame);
    settings.strength = step.strength;
    const Bytes before = noise(step.frame.bytes());
    EXPECT_EQ(harness.run(step.frame, before),
              filtered(step.frame, session, mode, settings, before))
        << mode.name << ' ' << step.frame.caps();
  }
  EXPECT_EQ(harness.error(), "");
}

TEST_F(GStreamer, AControllerSweepsTheStrength) {
  Harness harness;
  const ModeFacts& mode = *findModeFacts(LUMORA_MODE_RIXI);
  const Frame frame{kRgba, 100, 90};
  GstControlSource* const source = gst_interpolation_control_source_new();
  g_object_set(source, "mode", GST_INTERPOLATION_MODE_LINEAR, nullptr);
  auto* const timed = GST_TIMED_VALUE_CONTROL_SOURCE(source);
  gst_timed_value_control_source_set(timed, 0, 0);
  gst_timed_value_control_source_set(timed, 4 * GST_SECOND, 1);
  gst_object_add_control_binding(
      GST_OBJECT(harness.element()),
      gst_direct_control_binding_new(GST_OBJECT(harness.element()), "strength", source));
  gst_object_unref(source);

  harness.setLook(mode);
  harness.setCaps(frame);
  host::Session session;
  host::Settings settings;
  const Bytes before = noise(frame.bytes());
  for (int second = 0; second <= 4; ++second) {
    settings.strength = second * 8;
    EXPECT_EQ(harness.run(frame, before, second * GST_SECOND),
              filtered(frame, session, mode, settings, before))
        << second;
  }
}

TEST_F(GStreamer, PlacesAreSharesOfThePicture) {
  const Frame frame{kNv12, 400, 200};
  const Bytes before = noise(frame.bytes());
  for (const ShareCase& c : shareCases()) {
    Harness harness;
    host::Session session;
    const ModeFacts& mode = *findModeFacts(c.mode);
    harness.setLook(mode);
    for (const auto& [name, value] : c.given) harness.set(name, value);
    harness.setCaps(frame);
    EXPECT_EQ(harness.run(frame, before), filtered(frame, session, mode, c.expected, before))
        << mode.name;
  }
}

TEST_F(GStreamer, ErrorsReachTheBusInWords) {
  const Frame frame{kNv12, 160, 90};
  {
    Harness harness;
    harness.set("resources", "/nowhere");
    harness.setCaps(frame);
    EXPECT_NE(harness.push(frame, noise(frame.bytes())), GST_FLOW_OK);
    const std::string said = harness.error();
    EXPECT_EQ(said.find("gst-resource-error-quark: "), 0u) << said;
    EXPECT_NE(said.find("/nowhere/mixIm.dat"), said.npos) << said;
  }
  Harness harness;
  harness.setCaps(frame);
  harness.run(frame, noise(frame.bytes()));
  // In mid-stream, where nobody upstream can send other formats.
  harness.setLook(*findModeFacts(LUMORA_MODE_COLOUR_FIX));
  EXPECT_NE(harness.push(frame, noise(frame.bytes())), GST_FLOW_OK);
}

std::string formatsTaken(const char* look) {
  Harness harness;
  gst_util_set_object_arg(G_OBJECT(harness.element()), "look", look);
  GstCaps* const caps = gst_pad_peer_query_caps(harness.sinkPad(), nullptr);
  gchar* const text = gst_caps_to_string(caps);
  const std::string formats = text;
  g_free(text);
  gst_caps_unref(caps);
  return formats;
}

TEST_F(GStreamer, ColourFixAsksForRgba) {
  EXPECT_NE(formatsTaken("fugu").find("NV12"), std::string::npos);
  EXPECT_EQ(formatsTaken("colour-fix").find("NV12"), std::string::npos);
  EXPECT_NE(formatsTaken("colour-fix").find("RGBA"), std::string::npos);
}

// Upstream is told to write planes of NV pictures one behind the other.
TEST_F(GStreamer, AllocationAsksForTheLayoutThatFits) {
  for (const Format& format : {kRgba, kNv12, kNv21}) {
    Harness harness;
    harness.letDownstreamTakeVideoMeta();
    const Frame frame{format, 160, 90};
    harness.setCaps(frame);
    harness.run(frame, noise(frame.bytes()));
    GstCaps* const caps = gst_caps_from_string(frame.caps().c_str());
    GstQuery* const query = gst_query_new_allocation(caps, TRUE);
    ASSERT_TRUE(gst_pad_peer_query(harness.sinkPad(), query));
    EXPECT_EQ(gst_query_find_allocation_meta(query, GST_VIDEO_META_API_TYPE, nullptr),
              format.planes == 1)
        << format.name;
    gst_query_unref(query);
    gst_caps_unref(caps);
  }
}

}  // namespace
}  // namespace lumora::test
