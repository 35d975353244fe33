// The type _core.Filter: one look prepared for frames of one size.
#pragma once

#include "core/interpreter.h"

namespace lumora::python {

// A new reference to the type, null when raised.
PyObject* makeFilterType();

}  // namespace lumora::python
