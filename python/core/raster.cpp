#include "core/raster.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <string_view>

namespace lumora::python {
namespace {

constexpr auto kLargestStep = std::ptrdiff_t{std::numeric_limits<std::int32_t>::max()};

unsigned side(Py_ssize_t length) {
  return static_cast<unsigned>(
      std::min<Py_ssize_t>(length, std::numeric_limits<std::int32_t>::max()));
}

std::string sizeText(host::Size size) {
  return std::to_string(size.width) + " x " + std::to_string(size.height);
}

[[noreturn]] void refuseShape(const Buffer& buffer, const std::string& needed) {
  raise(PyExc_ValueError,
        std::string(buffer.name()) + " has the shape " + buffer.shape() + "; needed is " + needed);
}

// Copies pixels; a fourth channel that the source lacks becomes opaque.
void copyPixels(const std::uint8_t* from, const Raster& source, std::uint8_t* to,
                const Raster& target) {
  const int shared = std::min(source.channels, target.channels);
  for (unsigned x = 0; x < source.size.width; ++x) {
    for (int channel = 0; channel < shared; ++channel) {
      to[channel] = from[channel * source.channelStep];
    }
    if (target.channels > shared) to[shared] = 255;
    from += source.pixelStep;
    to += target.channels;
  }
}

// As copyPixels, from pixels that lie side by side. Four bytes at a time: the one too many is
// replaced, or by the next pixel.
void addAlpha(const std::uint8_t* from, std::uint8_t* to, unsigned width) {
  for (unsigned x = 0; x + 1 < width; ++x, from += 3, to += 4) {
    std::memcpy(to, from, 4);
    to[3] = 255;
  }
  std::memcpy(to, from, 3);
  to[3] = 255;
}
void dropAlpha(const std::uint8_t* from, std::uint8_t* to, unsigned width) {
  for (unsigned x = 0; x + 1 < width; ++x, from += 4, to += 3) std::memcpy(to, from, 4);
  std::memcpy(to, from, 3);
}

void copyRows(const Raster& source, const Raster& target) {
  for (std::ptrdiff_t y = 0; y < source.rows(); ++y) {
    const std::uint8_t* const from = source.first + y * source.rowStep;
    std::uint8_t* const to = target.first + y * target.rowStep;
    if (!source.hasPixelsSideBySide()) {
      copyPixels(from, source, to, target);
    } else if (source.channels == target.channels) {
      std::memcpy(to, from, static_cast<std::size_t>(source.rowBytes()));
    } else if (source.channels == 3) {
      addAlpha(from, to, source.size.width);
    } else {
      dropAlpha(from, to, source.size.width);
    }
  }
}

bool isSame(const Raster& a, const Raster& b) {
  return a.first == b.first && a.rowStep == b.rowStep && a.pixelStep == b.pixelStep &&
         a.channelStep == b.channelStep;
}

// The first and the last byte; steps of the source may be negative.
std::pair<const std::uint8_t*, const std::uint8_t*> extent(const Raster& raster) {
  const std::uint8_t* low = raster.first;
  const std::uint8_t* high = raster.first;
  for (const std::ptrdiff_t reach :
       {(raster.rows() - 1) * raster.rowStep,
        (static_cast<std::ptrdiff_t>(raster.size.width) - 1) * raster.pixelStep,
        (raster.channels - 1) * raster.channelStep}) {
    (reach < 0 ? low : high) += reach;
  }
  return {low, high};
}

bool overlap(const Raster& a, const Raster& b) {
  const auto [aLow, aHigh] = extent(a);
  const auto [bLow, bHigh] = extent(b);
  return aLow <= bHigh && bLow <= aHigh;
}

// The strength blend rewrites whole strides, and another thread may be at work between the rows.
bool suitsLibrary(const Raster& raster, const ModeFacts& mode, int strength) {
  if (raster.channels == 3 || raster.rowStep > kLargestStep) return false;
  return raster.rowStep == raster.rowBytes() || raster.hasOwnPadding || !mode.isBlended() ||
         strength >= LUMORA_FULL_STRENGTH;
}

host::Result filterInPlace(host::Session& session, const ModeFacts& mode,
                           const host::Settings& settings, const Raster& raster) {
  return session.apply(mode, settings,
                       {raster.format, raster.first, raster.size.width, raster.size.height,
                        static_cast<std::int32_t>(raster.rowStep)});
}

}  // namespace

Buffer::Buffer(PyObject* object, const char* name) : name_(name) {
  if (!PyObject_CheckBuffer(object)) {
    const Reference type(
        PyObject_GetAttrString(reinterpret_cast<PyObject*>(Py_TYPE(object)), "__name__"));
    const char* const typeName = PyUnicode_AsUTF8AndSize(type.get(), nullptr);
    raise(PyExc_TypeError, std::string(name) +
                               " is no picture and no buffer of bytes but of type " +
                               (typeName ? typeName : "?"));
  }
  if (PyObject_GetBuffer(object, &view_, PyBUF_RECORDS_RO) != 0) throw Raised();
  const std::string_view format = view_.format ? view_.format : "B";
  // An order of bytes means nothing for single ones.
  const bool isBytes = view_.itemsize == 1 && (format.ends_with('B') || format == "?");
  if (isBytes) return;
  const std::string message = std::string(name) + " has items of the format '" +
                              std::string(format) + "', not bytes (uint8)";
  PyBuffer_Release(&view_);
  raise(PyExc_TypeError, message);
}

void Buffer::requireWritable() const {
  if (view_.readonly) raise(PyExc_ValueError, std::string(name_) + " is read-only");
}

std::string Buffer::shape() const {
  std::string text = "(";
  for (int i = 0; i < view_.ndim; ++i) {
    if (i > 0) text += ", ";
    text += std::to_string(view_.shape[i]);
  }
  return text + (view_.ndim == 1 ? ",)" : ")");
}

std::ptrdiff_t Buffer::step(int dimension) const {
  // Owners of packed bytes may leave the steps out, asked for or not.
  if (view_.strides != nullptr) return view_.strides[dimension];
  std::ptrdiff_t step = 1;
  for (int i = dimension + 1; i < view_.ndim; ++i) step *= view_.shape[i];
  return step;
}

Raster pictureIn(const Buffer& buffer) {
  const Py_buffer& view = buffer.view();
  if (view.ndim != 3 || (view.shape[2] != 3 && view.shape[2] != 4)) {
    refuseShape(buffer, "(height, width, 3) or (height, width, 4)");
  }
  Raster raster;
  raster.first = buffer.first();
  raster.size = {side(view.shape[1]), side(view.shape[0])};
  raster.channels = static_cast<int>(view.shape[2]);
  raster.rowStep = buffer.step(0);
  raster.pixelStep = buffer.step(1);
  raster.channelStep = buffer.step(2);
  return raster;
}

Raster frameIn(const Buffer& buffer, std::uint32_t format, host::Size size,
               std::ptrdiff_t strideBytes) {
  const Py_buffer& view = buffer.view();
  Raster raster{.first = buffer.first(), .size = size, .format = format};
  if (format != LUMORA_FORMAT_RGBA) raster.channels = 1;
  raster.pixelStep = raster.channels;
  if (view.ndim == 1) {
    if (view.shape[0] != raster.rows() * strideBytes || buffer.step(0) != 1) {
      raise(PyExc_ValueError, std::string(buffer.name()) + " has " + std::to_string(view.shape[0]) +
                                  " bytes; frames of " + sizeText(size) + " pixels in rows of " +
                                  std::to_string(strideBytes) + " bytes have " +
                                  std::to_string(raster.rows() * strideBytes) + ", side by side");
    }
    raster.rowStep = strideBytes;
    raster.hasOwnPadding = true;
    return raster;
  }
  if (format == LUMORA_FORMAT_RGBA) {
    raster = pictureIn(buffer);
    if (raster.size.width != size.width || raster.size.height != size.height) {
      raise(PyExc_ValueError, std::string(buffer.name()) + " is " + sizeText(raster.size) +
                                  " pixels; the filter is for " + sizeText(size));
    }
    return raster;
  }
  if (view.ndim != 2 || view.shape[0] != raster.rows() ||
      view.shape[1] != static_cast<Py_ssize_t>(size.width)) {
    refuseShape(buffer, "(" + std::to_string(raster.rows()) + ", " + std::to_string(size.width) +
                            ") or as many bytes in one row");
  }
  raster.rowStep = buffer.step(0);
  raster.pixelStep = buffer.step(1);
  return raster;
}

Raster packedLike(const Raster& raster, std::uint8_t* first) {
  Raster packed{.first = first,
                .size = raster.size,
                .format = raster.format,
                .channels = raster.channels,
                .pixelStep = raster.channels};
  packed.rowStep = packed.rowBytes();
  return packed;
}

void requireRows(const Raster& raster, const char* name) {
  if (raster.hasPixelsSideBySide() && raster.rowStep >= raster.rowBytes()) return;
  raise(PyExc_ValueError,
        std::string(name) +
            " cannot be written in place: its pixels do not lie side by side in rows that follow "
            "each other from the top down (strides of " +
            std::to_string(raster.rowStep) + ", " + std::to_string(raster.pixelStep) + " and " +
            std::to_string(raster.channelStep) + " bytes)");
}

host::Result filter(host::Session& session, const ModeFacts& mode, const host::Settings& settings,
                    const Raster& source, const Raster& target) {
  if (suitsLibrary(target, mode, settings.strength)) {
    if (isSame(source, target)) return filterInPlace(session, mode, settings, target);
    if (!overlap(source, target)) {
      copyRows(source, target);
      return filterInPlace(session, mode, settings, target);
    }
  }
  Raster packed = packedLike(source, nullptr);
  if (packed.channels == 3) {
    packed.channels = 4;
    packed.pixelStep = 4;
    packed.rowStep = packed.rowBytes();
  }
  const std::unique_ptr<std::uint8_t[]> bytes(
      new std::uint8_t[static_cast<std::size_t>(packed.rows() * packed.rowStep)]);
  packed.first = bytes.get();
  copyRows(source, packed);
  const host::Result result = filterInPlace(session, mode, settings, packed);
  if (result) copyRows(packed, target);
  return result;
}

}  // namespace lumora::python
