#include "core/arguments.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <string_view>

#include "core/raster.h"
#include "resources/resource_files.h"

namespace lumora::python {
namespace {

[[noreturn]] void refuseType(const SettingFacts& facts) {
  PyErr_Clear();
  const char* const form = facts.numbers == 1 ? "a whole number" : "whole numbers";
  raise(PyExc_TypeError, std::string(facts.name) + " takes " + form + ": " + facts.value);
}

std::vector<int> numbersOf(PyObject* value, const SettingFacts& facts) {
  if (PyIndex_Check(value) && !PySequence_Check(value)) return {integerOf(value, facts.name)};
  if (!PySequence_Check(value) || PyUnicode_Check(value)) refuseType(facts);
  const Reference items(PySequence_Tuple(value));
  std::vector<int> numbers;
  for (Py_ssize_t i = 0; i < PyTuple_Size(items.get()); ++i) {
    PyObject* const item = PyTuple_GetItem(items.get(), i);
    if (!PyIndex_Check(item)) refuseType(facts);
    numbers.push_back(integerOf(item, facts.name));
  }
  return numbers;
}

// Of '#rrggbb'.
std::vector<int> colourOf(PyObject* value) {
  const char* const text = PyUnicode_AsUTF8AndSize(value, nullptr);
  if (text == nullptr) throw Raised();
  const std::string_view digits = text + (*text == '#');
  if (digits.size() != 6 || digits.find_first_not_of("0123456789abcdefABCDEF") != digits.npos) {
    raise(PyExc_ValueError,
          std::string("colour '") + text + "' is not of the form " + kSettings[kColour].value);
  }
  const unsigned long rgb = std::stoul(std::string(digits), nullptr, 16);
  return {static_cast<int>(rgb >> 16), static_cast<int>(rgb >> 8 & 255),
          static_cast<int>(rgb & 255)};
}

host::Mask maskOf(PyObject* value) {
  const Buffer buffer(value, kSettings[kMask].name);
  const Py_buffer& view = buffer.view();
  if (view.ndim != 2 || view.shape[0] < 1 || view.shape[1] < 1 || view.shape[0] > INT_MAX ||
      view.shape[1] > INT_MAX) {
    raise(PyExc_ValueError, "mask has the shape " + buffer.shape() + "; needed is (height, width)");
  }
  host::Mask mask{{}, static_cast<int>(view.shape[1]), static_cast<int>(view.shape[0])};
  mask.samples.reserve(static_cast<std::size_t>(view.shape[0]) *
                       static_cast<std::size_t>(view.shape[1]));
  for (Py_ssize_t y = 0; y < view.shape[0]; ++y) {
    for (Py_ssize_t x = 0; x < view.shape[1]; ++x) {
      mask.samples.push_back(buffer.first()[y * buffer.step(0) + x * buffer.step(1)]);
    }
  }
  return mask;
}

Setting settingNamed(const ModeFacts& mode, const char* name) {
  const auto found =
      std::find_if(kSettings.begin(), kSettings.end(),
                   [&](const SettingFacts& facts) { return std::strcmp(facts.name, name) == 0; });
  if (found == kSettings.end()) {
    raise(PyExc_TypeError, std::string("there is no setting '") + name + "'");
  }
  const auto setting = static_cast<Setting>(found - kSettings.begin());
  if (!mode.reads(setting)) {
    const auto owner = std::find_if(kModes.begin(), kModes.end(),
                                    [&](const ModeFacts& m) { return m.reads(setting); });
    raise(PyExc_TypeError,
          std::string(name) + " belongs to the look " + owner->name + ", not " + mode.name);
  }
  return setting;
}

void giveSetting(host::Settings& settings, const ModeFacts& mode, PyObject* key, PyObject* value) {
  const char* const name = PyUnicode_AsUTF8AndSize(key, nullptr);
  if (name == nullptr) throw Raised();
  const Setting setting = settingNamed(mode, name);
  if (setting == kMask) {
    settings.mask = maskOf(value);
    return;
  }
  const bool isText = setting == kColour && PyUnicode_Check(value);
  check(host::give(settings, setting,
                   isText ? colourOf(value) : numbersOf(value, kSettings[setting])));
  // A colour takes the place of the other, so that either can be given for one frame.
  if (setting == kColour) settings.pick.reset();
  if (setting == kPick) settings.colour.reset();
}

}  // namespace

const FrameFormat& formatNamed(const char* name) {
  std::string names;
  for (const FrameFormat& format : kFormats) {
    if (std::strcmp(format.name, name) == 0) return format;
    names += (names.empty() ? "" : ", ") + std::string(format.name);
  }
  raise(PyExc_ValueError, std::string("format '") + name + "' is not one of " + names);
}

const ModeFacts& modeNumbered(unsigned number) {
  const ModeFacts* const mode = findModeFacts(number);
  if (mode == nullptr) {
    raise(PyExc_ValueError, "there is no look with the number " + std::to_string(number));
  }
  return *mode;
}

int integerOf(PyObject* value, const char* name) {
  if (!PyIndex_Check(value)) {
    raise(PyExc_TypeError, std::string(name) + " must be a whole number");
  }
  const Reference index(PyNumber_Index(value));
  int overflow = 0;
  const long number = PyLong_AsLongAndOverflow(index.get(), &overflow);
  if (overflow != 0 || number < INT_MIN || number > INT_MAX) {
    raise(PyExc_ValueError, std::string(name) + " has a number beyond 32 bits");
  }
  return static_cast<int>(number);
}

void giveStrength(host::Settings& settings, PyObject* strength) {
  const int number = integerOf(strength, "strength");
  if (number < 0 || number > LUMORA_STRONGEST) {
    raise(PyExc_ValueError, "strength " + std::to_string(number) + " is outside 0.." +
                                std::to_string(LUMORA_STRONGEST));
  }
  settings.strength = number;
}

void giveSettings(host::Settings& settings, const ModeFacts& mode, PyObject* named) {
  PyObject* const colour = PyDict_GetItemString(named, kSettings[kColour].name);
  PyObject* const pick = PyDict_GetItemString(named, kSettings[kPick].name);
  if (mode.reads(kColour) && colour != nullptr && pick != nullptr) {
    raise(PyExc_ValueError, std::string(mode.name) + " takes either colour or pick, not both");
  }
  Py_ssize_t position = 0;
  PyObject* key = nullptr;
  PyObject* value = nullptr;
  while (PyDict_Next(named, &position, &key, &value)) giveSetting(settings, mode, key, value);
}

void checkPicture(const ModeFacts& mode, std::uint32_t format, host::Size size, const char* name) {
  host::Result result = host::checkPicture(mode, format, size);
  if (result.message.starts_with("is ")) result.message = std::string(name) + ' ' + result.message;
  check(result);
}

void open(host::Session& session, const ModeFacts& mode, const std::string& resources,
          host::Size size, int direction) {
  const std::string prefix = resources.ends_with('/') ? resources : resources + '/';
  host::Result result = withoutLock([&] { return session.open(mode, prefix, size, direction); });
  if (result.trouble == host::Trouble::kResource) {
    const std::string pack = prefix + kPackName;
    const int file = ::open(pack.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) {
      PyErr_SetFromErrnoWithFilename(PyExc_OSError, pack.c_str());
      throw Raised();
    }
    ::close(file);
    result.message = pack + ": is not a usable texture pack: " + result.message;
  }
  check(result);
}

}  // namespace lumora::python
