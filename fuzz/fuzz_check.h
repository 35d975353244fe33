// Invariants of fuzz targets.
#pragma once

#include <cstdio>
#include <cstdlib>

// Ends the process when the condition does not hold, so that the fuzzer keeps the input.
#define FUZZ_CHECK(condition)                                                      \
  do {                                                                             \
    if (!(condition)) {                                                            \
      std::fprintf(stderr, "%s:%d: not so: %s\n", __FILE__, __LINE__, #condition); \
      std::abort();                                                                \
    }                                                                              \
  } while (false)
