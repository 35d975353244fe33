// Buffers of the interpreter as pictures: what their shapes and steps mean, and copies between
// them.
#pragma once

#include <cstddef>
#include <cstdint>

#include "core/interpreter.h"
#include "host/session.h"

namespace lumora::python {

// Bytes of an object that has the buffer protocol. Its owner cannot free or resize them as long as
// this lives.
class Buffer {
 public:
  // name: of the argument, for messages. TypeError for an object without bytes.
  Buffer(PyObject* object, const char* name);
  ~Buffer() { PyBuffer_Release(&view_); }
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;

  const Py_buffer& view() const { return view_; }
  const char* name() const { return name_; }
  // ValueError for one that cannot be written to.
  void requireWritable() const;
  // "(480, 640, 3)"
  std::string shape() const;
  // The first byte, and the bytes from one item to the next in a dimension.
  std::uint8_t* first() const { return static_cast<std::uint8_t*>(view_.buf); }
  std::ptrdiff_t step(int dimension) const;

 private:
  Py_buffer view_{};
  const char* name_;
};

// Rows of pixels of bytes. NV frames have one channel and half as many rows again.
struct Raster {
  std::uint8_t* first = nullptr;
  host::Size size;  // of the picture
  std::uint32_t format = LUMORA_FORMAT_RGBA;
  int channels = 4;
  std::ptrdiff_t rowStep = 0;
  std::ptrdiff_t pixelStep = 4;
  std::ptrdiff_t channelStep = 1;
  // The bytes between the rows, and behind the last one, are the picture's own.
  bool hasOwnPadding = false;

  std::ptrdiff_t rows() const {
    const auto height = static_cast<std::ptrdiff_t>(size.height);
    return format == LUMORA_FORMAT_RGBA ? height : height / 2 * 3;
  }
  std::ptrdiff_t rowBytes() const { return std::ptrdiff_t{channels} * size.width; }
  bool hasPixelsSideBySide() const { return pixelStep == channels && channelStep == 1; }
};

// A picture of the shape (height, width, 3 or 4).
Raster pictureIn(const Buffer& buffer);
// A frame of the size: of the shape (height, width, 3 or 4), for NV formats (height * 3 / 2,
// width), or in one row of bytes with rows of strideBytes.
Raster frameIn(const Buffer& buffer, std::uint32_t format, host::Size size,
               std::ptrdiff_t strideBytes);
// A picture of the raster's size, format and channels, without padding, whose first byte this is.
Raster packedLike(const Raster& raster, std::uint8_t* first);
// ValueError unless pixels can be written side by side, rows from the top down.
void requireRows(const Raster& raster, const char* name);

// Gives the source's pixels the look and puts them into the target, which may be the source; both
// are of one size and format. Needs no lock of the interpreter. On a failure a target that is the
// source is untouched unless a thread could not be started.
host::Result filter(host::Session& session, const ModeFacts& mode, const host::Settings& settings,
                    const Raster& source, const Raster& target);

}  // namespace lumora::python
