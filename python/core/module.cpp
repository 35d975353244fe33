// The module lumora._core: what the package in Python stands on. Modes go by number, settings in a
// dictionary.
#include "core/arguments.h"
#include "core/filter_type.h"
#include "core/raster.h"
#include "core/sessions.h"

namespace lumora::python {

PyObject* errorType = nullptr;

namespace {

PyObject* applied(PyObject* arguments) {
  PyObject* image = nullptr;
  PyObject* out = nullptr;
  unsigned number = 0;
  PyObject* strength = nullptr;
  int singleThread = 0;
  PyObject* resources = nullptr;
  PyObject* named = nullptr;
  if (!PyArg_ParseTuple(arguments, "OOIOpO&O!", &image, &out, &number, &strength, &singleThread,
                        PyUnicode_FSConverter, &resources, &PyDict_Type, &named)) {
    throw Raised();
  }
  const Reference path(resources);
  const ModeFacts& mode = modeNumbered(number);
  host::Settings settings;
  giveStrength(settings, strength);
  settings.singleThread = singleThread != 0;
  giveSettings(settings, mode, named);
  check(host::checkComplete(mode, settings));

  const Buffer from(image, "image");
  const Raster source = pictureIn(from);
  checkPicture(mode, source.format, source.size, from.name());
  const SessionKey key =
      keyFor(mode, source.size, settings.direction, PyBytes_AsString(path.get()));
  const auto filterInto = [&](const Raster& target) {
    std::unique_ptr<host::Session> session = takeSession(mode, key);
    const host::Result result =
        withoutLock([&] { return filter(*session, mode, settings, source, target); });
    keepSession(key, std::move(session));
    check(result);
  };

  if (out == Py_None) {
    Reference bytes(PyBytes_FromStringAndSize(nullptr, source.rows() * source.rowBytes()));
    filterInto(packedLike(source, reinterpret_cast<std::uint8_t*>(PyBytes_AsString(bytes.get()))));
    return bytes.release();
  }
  const Buffer to(out, "out");
  const Raster target = pictureIn(to);
  if (source.size.width != target.size.width || source.size.height != target.size.height ||
      source.channels != target.channels) {
    raise(PyExc_ValueError, "out has the shape " + to.shape() + ", image " + from.shape());
  }
  to.requireWritable();
  requireRows(target, to.name());
  filterInto(target);
  Py_RETURN_NONE;
}

PyObject* apply(PyObject*, PyObject* arguments) {
  return entered([&] { return applied(arguments); });
}

PyObject* settingFacts(const SettingFacts& setting) {
  const bool hasRange = setting.numbers > 0 && setting.highest < kAnyPlace;
  const Reference range(hasRange ? Py_BuildValue("(ii)", setting.lowest, setting.highest)
                                 : Py_BuildValue(""));
  const Reference standard(setting.standard != kNoStandard ? PyLong_FromLong(setting.standard)
                                                           : Py_BuildValue(""));
  return Py_BuildValue("(ssOOs)", setting.name, setting.value, range.get(), standard.get(),
                       setting.help);
}

PyObject* modeFacts(const ModeFacts& mode) {
  const Reference settings(PyList_New(0)), formats(PyList_New(0));
  for (int i = 0; i < kSettingCount; ++i) {
    if (!mode.reads(static_cast<Setting>(i))) continue;
    const Reference facts(settingFacts(kSettings[i]));
    if (PyList_Append(settings.get(), facts.get()) != 0) throw Raised();
  }
  for (const FrameFormat& format : kFormats) {
    if (mode.rgbaOnly && format.isCamera) continue;
    const Reference name(PyUnicode_FromString(format.name));
    if (PyList_Append(formats.get(), name.get()) != 0) throw Raised();
  }
  return Py_BuildValue("(IszsszsOO)", mode.number, mode.name, mode.alias, mode.kind, mode.summary,
                       mode.texture.words, describe(mode.strength), formats.get(), settings.get());
}

PyObject* facts(PyObject*, PyObject*) {
  return entered([&]() -> PyObject* {
    Reference list(PyList_New(0));
    for (const ModeFacts& mode : kModes) {
      const Reference row(modeFacts(mode));
      if (PyList_Append(list.get(), row.get()) != 0) throw Raised();
    }
    return list.release();
  });
}

PyMethodDef methods[] = {
    {"apply", apply, METH_VARARGS,
     "Filters (image, out, number, strength, single_thread, resources, settings) into out, or with "
     "None "
     "into bytes that it returns."},
    {"facts", facts, METH_NOARGS,
     "Rows of (number, name, alias, kind, summary, texture, strength, formats, settings)."},
    {nullptr, nullptr, 0, nullptr}};

PyModuleDef definition = {PyModuleDef_HEAD_INIT,
                          "lumora._core",
                          "What the package lumora stands on.",
                          -1,
                          methods,
                          nullptr,
                          nullptr,
                          nullptr,
                          nullptr};

void add(PyObject* module, const char* name, PyObject* object) {
  const Reference owned(object);
  if (PyModule_AddObjectRef(module, name, object) != 0) throw Raised();
}

}  // namespace
}  // namespace lumora::python

// The library's four-threaded NV12 step traces to standard output, which is the program's own: the
// linker sends its lines here.
extern "C" int __wrap_puts(const char*) { return 0; }

PyMODINIT_FUNC PyInit__core() {
  using namespace lumora::python;
  return entered([]() -> PyObject* {
    Reference module(PyModule_Create(&definition));
    errorType = PyErr_NewExceptionWithDoc("lumora.Error", "The library refused or failed.",
                                          PyExc_RuntimeError, nullptr);
    add(module.get(), "Error", errorType);
    Py_XINCREF(errorType);
    add(module.get(), "Filter", makeFilterType());
    add(module.get(), "FULL_STRENGTH", PyLong_FromLong(LUMORA_FULL_STRENGTH));
    add(module.get(), "VERSION", PyUnicode_FromString(LUMORA_VERSION));
    return module.release();
  });
}
