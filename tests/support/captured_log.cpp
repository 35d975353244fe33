#include "support/captured_log.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>

#include "platform/log.h"

namespace lumora::test {
namespace {

std::mutex mutex;
bool capturing = false;
std::vector<CapturedLog::Line> captured;

}  // namespace

CapturedLog::CapturedLog() {
  const std::lock_guard lock(mutex);
  captured.clear();
  capturing = true;
}

CapturedLog::~CapturedLog() {
  const std::lock_guard lock(mutex);
  capturing = false;
}

std::vector<CapturedLog::Line> CapturedLog::lines() const {
  const std::lock_guard lock(mutex);
  return captured;
}

std::vector<std::string> CapturedLog::errors() const {
  std::vector<std::string> formats;
  for (const Line& line : lines()) {
    if (line.priority == kLogError) formats.push_back(line.format);
  }
  return formats;
}

void CapturedLog::clear() {
  const std::lock_guard lock(mutex);
  captured.clear();
}

}  // namespace lumora::test

extern "C" int __android_log_print(int priority, const char* tag, const char* format, ...) {
  using namespace lumora::test;
  char text[512];
  std::va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  const std::lock_guard lock(mutex);
  if (capturing) captured.push_back({priority, tag, format, text});
  return length;
}
