// A mapped video frame as the library takes pictures.
#pragma once

#include <gst/video/video.h>

#include <cstdint>
#include <vector>

#include "lumora/filters.h"

namespace lumora::gstreamer {

// LUMORA_FORMAT_...; 0 for a format that the element does not take.
std::uint32_t formatOf(const GstVideoInfo& info);

// The frame's own memory where its planes lie as the library needs them, otherwise a copy.
class Frame {
 public:
  // scratch: keeps its memory from frame to frame.
  Frame(GstVideoFrame& frame, std::vector<std::uint8_t>& scratch);

  const FilterImage& picture() const { return picture_; }
  // Gives the frame what was done to the picture.
  void putBack();

 private:
  bool isCopy() const { return picture_.picData != GST_VIDEO_FRAME_PLANE_DATA(&frame_, 0); }

  GstVideoFrame& frame_;
  FilterImage picture_;
};

}  // namespace lumora::gstreamer
