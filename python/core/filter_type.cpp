#include "core/filter_type.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <optional>

#include "core/arguments.h"
#include "core/raster.h"

namespace lumora::python {
namespace {

struct Filter {
  const ModeFacts* mode = nullptr;
  std::uint32_t format = 0;
  host::Size size;
  std::ptrdiff_t strideBytes = 0;
  host::Settings settings;
  // Taken without the interpreter's lock: calls of several threads wait for each other.
  std::mutex mutex;
  host::Session session;
};

struct FilterObject {
  PyObject_HEAD Filter* filter;
};

Filter& stateOf(PyObject* self) { return *reinterpret_cast<FilterObject*>(self)->filter; }

// asked: None for rows without padding.
std::ptrdiff_t strideFor(const FrameFormat& format, unsigned width, PyObject* asked) {
  const int least = static_cast<int>((format.isCamera ? 1 : 4) * width);
  if (asked == Py_None) return least;
  const int stride = integerOf(asked, "stride");
  if (stride < least) {
    raise(PyExc_ValueError, "stride " + std::to_string(stride) + " is below the " +
                                std::to_string(least) + " bytes of a row");
  }
  return stride;
}

std::unique_ptr<Filter> makeFilter(PyObject* arguments) {
  unsigned number = 0;
  const char* formatName = nullptr;
  PyObject* width = nullptr;
  PyObject* height = nullptr;
  PyObject* stride = nullptr;
  PyObject* strength = nullptr;
  int singleThread = 0;
  PyObject* resources = nullptr;
  PyObject* named = nullptr;
  if (!PyArg_ParseTuple(arguments, "Is(OO)OOpO&O!", &number, &formatName, &width, &height, &stride,
                        &strength, &singleThread, PyUnicode_FSConverter, &resources, &PyDict_Type,
                        &named)) {
    throw Raised();
  }
  const Reference path(resources);
  auto filter = std::make_unique<Filter>();
  filter->mode = &modeNumbered(number);
  const FrameFormat& format = formatNamed(formatName);
  filter->format = format.format;
  filter->size = {static_cast<unsigned>(std::max(integerOf(width, "size"), 0)),
                  static_cast<unsigned>(std::max(integerOf(height, "size"), 0))};
  checkPicture(*filter->mode, filter->format, filter->size, "size");
  filter->strideBytes = strideFor(format, filter->size.width, stride);
  giveStrength(filter->settings, strength);
  filter->settings.singleThread = singleThread != 0;
  giveSettings(filter->settings, *filter->mode, named);
  check(host::checkComplete(*filter->mode, filter->settings));
  open(filter->session, *filter->mode, PyBytes_AsString(path.get()), filter->size,
       filter->settings.direction);
  return filter;
}

PyObject* newFilter(PyTypeObject* type, PyObject* arguments, PyObject*) {
  return entered([&]() -> PyObject* {
    std::unique_ptr<Filter> filter = makeFilter(arguments);
    const auto allocate = reinterpret_cast<allocfunc>(PyType_GetSlot(type, Py_tp_alloc));
    Reference object(allocate(type, 0));
    reinterpret_cast<FilterObject*>(object.get())->filter = filter.release();
    return object.release();
  });
}

void deallocate(PyObject* self) {
  PyTypeObject* const type = Py_TYPE(self);
  delete reinterpret_cast<FilterObject*>(self)->filter;
  reinterpret_cast<freefunc>(PyType_GetSlot(type, Py_tp_free))(self);
  Py_DECREF(type);
}

// apply(frame, strength or None, settings)
PyObject* apply(PyObject* self, PyObject* arguments) {
  return entered([&]() -> PyObject* {
    PyObject* frame = nullptr;
    PyObject* strength = nullptr;
    PyObject* named = nullptr;
    if (!PyArg_ParseTuple(arguments, "OOO!", &frame, &strength, &PyDict_Type, &named)) {
      throw Raised();
    }
    Filter& filter = stateOf(self);
    const Buffer buffer(frame, "frame");
    buffer.requireWritable();
    const Raster raster = frameIn(buffer, filter.format, filter.size, filter.strideBytes);
    requireRows(raster, buffer.name());

    // A copy only where the call differs: the mask may be large.
    std::optional<host::Settings> own;
    if (strength != Py_None || PyDict_Size(named) > 0) own = filter.settings;
    if (strength != Py_None) giveStrength(*own, strength);
    if (PyDict_Size(named) > 0) giveSettings(*own, *filter.mode, named);
    const host::Settings& settings = own ? *own : filter.settings;
    if (settings.direction != filter.settings.direction) {
      raise(PyExc_ValueError, "direction cannot change: textures are prepared for it");
    }

    bool isOpen = false;
    const host::Result result = withoutLock([&]() -> host::Result {
      const std::lock_guard<std::mutex> lock(filter.mutex);
      isOpen = filter.session.isOpen();
      return isOpen ? python::filter(filter.session, *filter.mode, settings, raster, raster)
                    : host::Result{};
    });
    if (!isOpen) raise(PyExc_ValueError, "the filter is closed");
    check(result);
    Py_RETURN_NONE;
  });
}

PyObject* close(PyObject* self, PyObject*) {
  return entered([&]() -> PyObject* {
    withoutLock([&] {
      Filter& filter = stateOf(self);
      const std::lock_guard<std::mutex> lock(filter.mutex);
      filter.session.close();
      return 0;
    });
    Py_RETURN_NONE;
  });
}

PyMethodDef methods[] = {
    {"apply", apply, METH_VARARGS,
     "Filters a frame in place: (frame, strength or None, settings)."},
    {"close", close, METH_NOARGS, "Releases the textures; waits for a call that is at work."},
    {nullptr, nullptr, 0, nullptr}};

PyType_Slot slots[] = {
    {Py_tp_new, reinterpret_cast<void*>(newFilter)},
    {Py_tp_dealloc, reinterpret_cast<void*>(deallocate)},
    {Py_tp_methods, methods},
    {Py_tp_doc, const_cast<char*>("One look prepared for frames of one size: (number, format, "
                                  "(width, height), stride or None, strength, single_thread, "
                                  "resources, settings).")},
    {0, nullptr}};

PyType_Spec spec = {"lumora._core.Filter", sizeof(FilterObject), 0, Py_TPFLAGS_DEFAULT, slots};

}  // namespace

PyObject* makeFilterType() { return PyType_FromSpec(&spec); }

}  // namespace lumora::python
