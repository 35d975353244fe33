// The pictures that everything runs on: smooth gradients with noise, rows packed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "lumora/filters.h"

namespace lumora::bench {

struct Format {
  std::uint32_t code;
  const char* name;
};
inline constexpr Format kRgba{LUMORA_FORMAT_RGBA, "rgba"};
inline constexpr Format kNv21{LUMORA_FORMAT_NV21, "nv21"};
inline constexpr Format kNv12{LUMORA_FORMAT_NV12, "nv12"};
inline constexpr Format kFormats[] = {kRgba, kNv21, kNv12};

struct Size {
  int width;
  int height;
  double pixels() const { return static_cast<double>(width) * height; }
  std::string name() const { return std::to_string(width) + "x" + std::to_string(height); }
};
// Targets are stated for the last one.
inline constexpr Size kSizes[] = {{1280, 720}, {1920, 1080}, {4000, 3000}};
inline constexpr Size kTargetSize = kSizes[2];
inline bool isTargetSize(Size size) { return size.width == kTargetSize.width; }

struct FreeBlock {
  void operator()(void* block) const { std::free(block); }
};
using Buffer = std::unique_ptr<std::uint8_t[], FreeBlock>;
// Page-aligned, as camera buffers are.
Buffer makeBuffer(std::size_t bytes);

class TestPicture {
 public:
  TestPicture(Format format, Size size);

  const Format format;
  const Size size;
  const int stride;
  const std::size_t bytes;

  std::uint8_t* data() const { return data_.get(); }
  std::uint8_t* chroma() const { return data() + static_cast<std::size_t>(stride) * size.height; }
  FilterImage image() const;
  // What the picture held at first.
  const std::uint8_t* original() const { return original_; }
  void restore() const;
  // One limit pass over the whole picture.
  void limitPass() const;

 private:
  const std::uint8_t* original_;
  Buffer data_;
};

}  // namespace lumora::bench
