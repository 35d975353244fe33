// Stands in for Android's log where there is none. It is weak, alone in its file and visible from
// outside the shared library, so that a host or a test can supply its own.
#if !defined(__ANDROID__)

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "lumora/filters.h"

extern "C" LUMORA_FILTERS_API __attribute__((weak)) int __android_log_print(int priority,
                                                                            const char* tag,
                                                                            const char* format,
                                                                            ...) {
  char text[512];
  std::va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);

  // One message is one line, whatever line breaks it was written with.
  std::size_t length = std::strlen(text);
  while (length > 0 && (text[length - 1] == '\n' || text[length - 1] == ' ')) --length;
  text[length] = '\0';
  for (char* c = text; *c != '\0'; ++c) {
    if (*c == '\n') *c = ' ';
  }
  return std::fprintf(stderr, "%c %s: %s\n", priority >= 6 ? 'E' : 'I', tag, text);
}

#endif
