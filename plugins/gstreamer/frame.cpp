#include "plugins/gstreamer/frame.h"

#include <cstring>

namespace lumora::gstreamer {
namespace {

std::uint8_t* plane(const GstVideoFrame& frame, unsigned index) {
  return static_cast<std::uint8_t*>(frame.data[index]);
}

// Half as many rows of chroma pairs lie directly behind the luma, with its stride, and all rows are
// as long as the stride, the last one too.
bool suits(const GstVideoFrame& frame) {
  const std::size_t stride = GST_VIDEO_FRAME_PLANE_STRIDE(&frame, 0);
  std::size_t bytes = stride * GST_VIDEO_FRAME_HEIGHT(&frame);
  if (GST_VIDEO_FRAME_N_PLANES(&frame) == 2) {
    if (GST_VIDEO_FRAME_PLANE_STRIDE(&frame, 1) != GST_VIDEO_FRAME_PLANE_STRIDE(&frame, 0) ||
        plane(frame, 1) != plane(frame, 0) + bytes) {
      return false;
    }
    bytes += bytes / 2;
  }
  const GstMapInfo& memory = frame.map[0];
  return plane(frame, 0) + bytes <= memory.data + memory.size;
}

std::size_t rowBytes(const GstVideoFrame& frame) {
  const std::size_t width = GST_VIDEO_FRAME_WIDTH(&frame);
  return GST_VIDEO_FRAME_N_PLANES(&frame) == 1 ? 4 * width : width;
}

// Calls step(row of the frame, row of packed memory) for all rows of all planes.
template <class Step>
void forRows(const GstVideoFrame& frame, std::uint8_t* packed, Step step) {
  const std::size_t bytes = rowBytes(frame);
  for (unsigned index = 0; index < GST_VIDEO_FRAME_N_PLANES(&frame); ++index) {
    const int rows = GST_VIDEO_FRAME_HEIGHT(&frame) >> index;
    for (int y = 0; y < rows; ++y, packed += bytes) {
      const std::ptrdiff_t offset =
          static_cast<std::ptrdiff_t>(y) * GST_VIDEO_FRAME_PLANE_STRIDE(&frame, index);
      step(plane(frame, index) + offset, packed);
    }
  }
}

}  // namespace

std::uint32_t formatOf(const GstVideoInfo& info) {
  switch (GST_VIDEO_INFO_FORMAT(&info)) {
    case GST_VIDEO_FORMAT_RGBA: return LUMORA_FORMAT_RGBA;
    case GST_VIDEO_FORMAT_NV21: return LUMORA_FORMAT_NV21;
    case GST_VIDEO_FORMAT_NV12: return LUMORA_FORMAT_NV12;
    default: return 0;
  }
}

Frame::Frame(GstVideoFrame& frame, std::vector<std::uint8_t>& scratch)
    : frame_(frame),
      picture_{formatOf(frame.info), plane(frame, 0),
               static_cast<std::uint32_t>(GST_VIDEO_FRAME_WIDTH(&frame)),
               static_cast<std::uint32_t>(GST_VIDEO_FRAME_HEIGHT(&frame)),
               GST_VIDEO_FRAME_PLANE_STRIDE(&frame, 0)} {
  if (suits(frame)) return;
  const std::size_t bytes = rowBytes(frame), luma = bytes * picture_.height;
  scratch.resize(GST_VIDEO_FRAME_N_PLANES(&frame) == 1 ? luma : luma + luma / 2);
  picture_.picData = scratch.data();
  picture_.stride = static_cast<std::int32_t>(bytes);
  forRows(frame, scratch.data(), [bytes](const std::uint8_t* row, std::uint8_t* packed) {
    std::memcpy(packed, row, bytes);
  });
}

void Frame::putBack() {
  if (!isCopy()) return;
  const std::size_t bytes = rowBytes(frame_);
  forRows(frame_, picture_.picData, [bytes](std::uint8_t* row, const std::uint8_t* packed) {
    std::memcpy(row, packed, bytes);
  });
}

}  // namespace lumora::gstreamer
