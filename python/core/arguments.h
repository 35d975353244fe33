// Settings, formats and modes from the interpreter's objects.
#pragma once

#include "core/interpreter.h"
#include "host/session.h"

namespace lumora::python {

struct FrameFormat {
  const char* name;
  std::uint32_t format;
  bool isCamera;  // NV: what modes of RGBA alone do not take
};
inline constexpr FrameFormat kFormats[] = {{"rgba", LUMORA_FORMAT_RGBA, false},
                                           {"nv21", LUMORA_FORMAT_NV21, true},
                                           {"nv12", LUMORA_FORMAT_NV12, true}};

// ValueError for a name or number that is none.
const FrameFormat& formatNamed(const char* name);
const ModeFacts& modeNumbered(unsigned number);

// A whole number of 32 bits, TypeError or ValueError otherwise.
int integerOf(PyObject* value, const char* name);

// ValueError for strengths out of range.
void giveStrength(host::Settings& settings, PyObject* strength);
// named: a dictionary of settings by name, borrowed. TypeError for a name that is none of the
// mode's or a value of another type, ValueError for values out of range.
void giveSettings(host::Settings& settings, const ModeFacts& mode, PyObject* named);

// ValueError for pictures that the mode does not take, with the name of the argument.
void checkPicture(const ModeFacts& mode, std::uint32_t format, host::Size size, const char* name);

// Opens the session, without the interpreter's lock. resources: a folder. FileNotFoundError or
// another OSError where its pack cannot be opened, lumora.Error where it is none.
void open(host::Session& session, const ModeFacts& mode, const std::string& resources,
          host::Size size, int direction);

}  // namespace lumora::python
