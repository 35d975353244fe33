// The Android log. Formats are those of the library's messages: they begin "[%s] " and their first
// argument is always "FILTER_LOG".
#pragma once

#include "platform/status.h"

extern "C" int __android_log_print(int priority, const char* tag, const char* format, ...);

namespace lumora {

inline constexpr int kLogInfo = 4;
inline constexpr int kLogError = 6;
inline constexpr const char* kLogTag = "filter";
inline constexpr const char* kLogName = "FILTER_LOG";

// Logs a failure where it is detected.
template <class... Args>
void logError(const char* format, Args... args) {
  __android_log_print(kLogError, kLogTag, format, kLogName, args...);
}

// Logs a failure and hands its status on: return fail(Status::kBadArgument, "[%s] ...").
template <class... Args>
Status fail(Status status, const char* format, Args... args) {
  logError(format, args...);
  return status;
}

}  // namespace lumora
