#include "reliability/tables.h"

#include <cstdio>

#include "platform/log.h"
#include "support/captured_log.h"
#include "support/mode_calls.h"
#include "support/thread_faults.h"

namespace lumora::test {
namespace {

constexpr PixelSize kPicture = {94, 90};

// In ASCII and on one line.
std::string quoted(const std::string& message) {
  std::string text = "\"";
  for (const char c : message) {
    char escaped[8];
    const bool isPrintable = c >= ' ' && c <= '~';
    std::snprintf(escaped, sizeof escaped, isPrintable ? "%c" : "\\x%02X", c & 255);
    text += c == '\n' ? "\\n" : escaped;
  }
  return text + '"';
}

// The status, the starts of workers, and the messages without the numbers of workers.
std::string outcomeOf(const ModeCall& call, const TestHandle& handle, std::uint64_t faults = 0) {
  const ThreadFaults injected(faults);
  const TestPicture picture(call.format, kPicture.width, kPicture.height);
  const CapturedLog log;
  std::string text = std::to_string(run(call, handle.get(), picture.image()));
  text += ", " + std::to_string(ThreadFaults::startCount()) + " starts";
  for (const CapturedLog::Line& line : log.lines()) {
    if (line.priority != kLogError) continue;
    const bool isNumbered = line.format.find("threadID") != std::string::npos;
    text += ' ' + quoted(isNumbered ? line.format : line.text);
  }
  return text;
}

// Faults in a row that end alike share a line of two parts.
using Lines = std::vector<std::pair<std::string, std::string>>;

void addOutcome(Lines& lines, const char* fault, int n, const std::string& outcome) {
  if (lines.empty() || lines.back().second != outcome) lines.emplace_back(fault, outcome);
  lines.back().first += ' ' + std::to_string(n);
}

void addCall(const ModeCall& call, const TestHandle& handle, TestAllocator& allocator,
             std::vector<std::string>& table) {
  allocator.clearRequests();
  std::string line = modeName(call) + (call.variant > 0 ? " otherwise " : " ") +
                     pathName(call.path) + (call.onCaller ? ", one thread, " : ", four threads, ") +
                     outcomeOf(call, handle) + ", requests";
  const int starts = ThreadFaults::startCount();
  const std::vector<std::uint32_t> requests = allocator.requests();
  for (const std::uint32_t bytes : requests) line += ' ' + std::to_string(bytes);
  table.push_back(line);
  Lines lines;
  for (int n = 1; n <= static_cast<int>(requests.size()); ++n) {
    allocator.failAt(n);
    addOutcome(lines, "request", n, outcomeOf(call, handle));
  }
  for (int n = 1; n <= starts; ++n) {
    addOutcome(lines, "worker", n, outcomeOf(call, handle, std::uint64_t{1} << (n - 1)));
  }
  for (const auto& [faults, outcome] : lines) table.push_back("  " + faults + ": " + outcome);
}

}  // namespace

std::vector<std::string> failureTable() {
  TestAllocator allocator;
  std::vector<std::string> table;
  for (const TexturePath path : {TexturePath::kPrepared, TexturePath::kOtherSize}) {
    const TestHandle handle(allocator, handleLayout(path, kPicture));
    for (ModeCall call : allModeCalls()) {
      if (path != TexturePath::kPrepared && !usesTexturePlanes(call.mode)) continue;
      call.path = path;
      call.strength = 5;  // below 16 the copy and the blend can fail too
      for (call.variant = 0; call.variant < variantsOf(call.mode); ++call.variant) {
        for (const bool onCaller : {false, true}) {
          call.onCaller = onCaller;
          addCall(call, handle, allocator, table);
        }
      }
    }
  }
  return table;
}

}  // namespace lumora::test
