// What the sources of the module share of the interpreter: owned references, exceptions, its lock.
#pragma once

#define PY_SSIZE_T_CLEAN
#include <Python.h>
#include <cxxabi.h>
#include <unistd.h>

#include <new>
#include <string>
#include <utility>

#include "host/result.h"

namespace lumora::python {

// Thrown when the interpreter has an exception set.
struct Raised {};

// An owned reference.
class Reference {
 public:
  // Takes over what a function of the interpreter returned; null means that it has raised.
  explicit Reference(PyObject* object) : object_(object) {
    if (object == nullptr) throw Raised();
  }
  ~Reference() { Py_XDECREF(object_); }
  Reference(const Reference&) = delete;
  Reference& operator=(const Reference&) = delete;

  PyObject* get() const { return object_; }
  PyObject* release() { return std::exchange(object_, nullptr); }

 private:
  PyObject* object_;
};

// lumora.Error, borrowed.
extern PyObject* errorType;

[[noreturn]] inline void raise(PyObject* type, const std::string& message) {
  PyErr_SetString(type, message.c_str());
  throw Raised();
}

// Raises what suits the trouble, if there is one.
inline void check(const host::Result& result) {
  switch (result.trouble) {
    case host::Trouble::kNone: return;
    case host::Trouble::kArgument: raise(PyExc_ValueError, result.message);
    case host::Trouble::kMemory: raise(PyExc_MemoryError, result.message);
    default: raise(errorType, result.message);
  }
}

// Runs an entry of the module: what it throws becomes the interpreter's exception and null.
template <class Entry>
PyObject* entered(Entry entry) {
  try {
    return entry();
  } catch (const Raised&) {
    return nullptr;
  } catch (const std::bad_alloc&) {
    return PyErr_NoMemory();
  }
}

// Lets other threads of the interpreter run meanwhile. The work must not touch its objects.
template <class Work>
auto withoutLock(Work work) {
  struct Lock {
    PyThreadState* state = PyEval_SaveThread();
    ~Lock() noexcept(false) {
      try {
        PyEval_RestoreThread(state);
      } catch (const abi::__forced_unwind&) {
        // The interpreter has ended and wants this thread to end, which would release its objects
        // on the way. The process takes the thread with it.
        for (;;) ::pause();
      }
    }
  } const lock;
  return work();
}

}  // namespace lumora::python
