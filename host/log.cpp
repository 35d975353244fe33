#include "host/log.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <string_view>
#include <utility>

#include "lumora/filters.h"

namespace lumora::host {
namespace {

constexpr int kErrorPriority = 6;
// Nobody may ever take them: what a host that does not ask can pile up is bounded.
constexpr std::size_t kMostKept = 64;

std::atomic<LogSink> sink{nullptr};
// The library logs in the thread that calls it.
thread_local std::vector<std::string> errors;

// One plain line: without the library's own tag and line breaks, and with the full-width and
// ideographic punctuation of GB2312 (lead bytes A3 and A1) as ASCII.
std::string plainLine(std::string_view message) {
  constexpr std::string_view kTag = "[FILTER_LOG]";
  if (message.starts_with(kTag)) message.remove_prefix(kTag.size());
  std::string line;
  for (std::size_t i = 0; i < message.size(); ++i) {
    const auto byte = static_cast<unsigned char>(message[i]);
    if ((byte == 0xA3 || byte == 0xA1) && i + 1 < message.size()) {
      const auto second = static_cast<unsigned char>(message[++i]);
      line += byte == 0xA3 ? static_cast<char>(second & 0x7F) : ',';
    } else {
      line += byte < ' ' || byte >= 0x7F ? ' ' : message[i];
    }
  }
  const std::size_t first = line.find_first_not_of(' ');
  const std::size_t last = line.find_last_not_of(' ');
  return first == std::string::npos ? std::string() : line.substr(first, last - first + 1);
}

}  // namespace

void setLogSink(LogSink other) { sink = other; }

std::vector<std::string> takeErrors() { return std::exchange(errors, {}); }

}  // namespace lumora::host

extern "C" LUMORA_FILTERS_API int __android_log_print(int priority, const char* /*tag*/,
                                                      const char* format, ...) {
  using namespace lumora::host;
  char message[512];
  std::va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(message, sizeof message, format, arguments);
  va_end(arguments);

  const std::string line = plainLine(message);
  if (const LogSink shown = sink.load()) shown(priority, line.c_str());
  if (priority >= kErrorPriority && errors.size() < kMostKept) errors.push_back(line);
  return 1;
}
