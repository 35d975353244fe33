#include "reliability/tables.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "modes/modes.h"
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

// What the facts of a call say is named instead of spelt out, so that all that is alike reads
// alike.
std::string withFactsNamed(std::string text, const ModeCall& call) {
  const std::string format[] = {"", "RGBA ", "NV21 ", "NV12 "};
  const bool isNv21 = call.format == PixelFormat::kNv21;
  const std::pair<std::string, std::string> names[] = {
      {format[static_cast<int>(call.format)] + capitals(findModeFacts(call.mode)->name).text,
       "FORMAT MODE"},
      {isNv21 ? "Mem malloc error!\n" : "can't malloc enough memory\n", "NO COPY"},
      {"[size=" + std::to_string(kPicture.pixels()) + ']', "[size=PIXELS]"}};
  for (const auto& [spelt, name] : names) {
    const std::size_t at = text.find(spelt);
    if (at != std::string::npos) text.replace(at, spelt.size(), name);
  }
  return text;
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
    text += ' ' + quoted(isNumbered ? line.format : withFactsNamed(line.text, call));
  }
  return text;
}

// Faults in a row that end alike share a line of two parts.
using Lines = std::vector<std::pair<std::string, std::string>>;

void addOutcome(Lines& lines, const char* fault, int n, const std::string& outcome) {
  if (lines.empty() || lines.back().second != outcome) lines.emplace_back(fault, outcome);
  lines.back().first += ' ' + std::to_string(n);
}

// What holds for a call, or for several that differ in one part of their description.
struct Entry {
  std::array<std::string, 4> calls;  // mode, format, textures, threads
  std::vector<std::string> lines;
};

std::string requestOf(std::uint32_t bytes, const ModeCall& call) {
  const TestPicture picture(call.format, kPicture.width, kPicture.height);
  return bytes == picture.bytes() + 16 ? "PICTURE+16" : std::to_string(bytes);
}

Entry entryOf(const ModeCall& call, const TestHandle& handle, TestAllocator& allocator) {
  allocator.clearRequests();
  std::string whole = outcomeOf(call, handle) + ", requests";
  const int starts = ThreadFaults::startCount();
  const std::vector<std::uint32_t> requests = allocator.requests();
  for (const std::uint32_t bytes : requests) whole += ' ' + requestOf(bytes, call);
  Lines lines;
  for (int n = 1; n <= static_cast<int>(requests.size()); ++n) {
    allocator.failAt(n);
    addOutcome(lines, "request", n, outcomeOf(call, handle));
  }
  for (int n = 1; n <= starts; ++n) {
    addOutcome(lines, "worker", n, outcomeOf(call, handle, std::uint64_t{1} << (n - 1)));
  }
  Entry entry{{findModeFacts(call.mode)->name, formatName(call.format), pathName(call.path),
               call.onCaller ? "one thread" : "four threads"},
              {"  " + whole}};
  if (call.variant > 0) entry.calls[0] += "-otherwise";
  for (const auto& [faults, outcome] : lines) entry.lines.push_back("  " + faults + ": " + outcome);
  return entry;
}

// Joins the entries that differ in nothing but this part of their calls.
void joinBy(std::size_t part, std::vector<Entry>& entries) {
  std::vector<Entry> joined;
  for (const Entry& entry : entries) {
    const auto differsThereOnly = [&](const Entry& other) {
      Entry same = other;
      same.calls[part] = entry.calls[part];
      return same.calls == entry.calls && same.lines == entry.lines;
    };
    const auto found = std::find_if(joined.begin(), joined.end(), differsThereOnly);
    if (found == joined.end()) {
      joined.push_back(entry);
    } else {
      found->calls[part] += ' ' + entry.calls[part];
    }
  }
  entries = joined;
}

std::vector<Entry> allEntries() {
  TestAllocator allocator;
  std::vector<Entry> entries;
  for (const TexturePath path : {TexturePath::kPrepared, TexturePath::kOtherSize}) {
    const TestHandle handle(allocator, handleLayout(path, kPicture));
    for (ModeCall call : allModeCalls()) {
      if (path != TexturePath::kPrepared && !usesTexturePlanes(call.mode)) continue;
      call.path = path;
      call.strength = 5;  // below 16 the room for a copy can be refused too
      for (call.variant = 0; call.variant < variantsOf(call.mode); ++call.variant) {
        for (const bool onCaller : {false, true}) {
          call.onCaller = onCaller;
          entries.push_back(entryOf(call, handle, allocator));
        }
      }
    }
  }
  return entries;
}

}  // namespace

std::vector<std::string> failureTable() {
  std::vector<Entry> entries = allEntries();
  for (const std::size_t part : {1, 0, 2, 3}) joinBy(part, entries);
  std::vector<std::string> table;
  for (const auto& [calls, lines] : entries) {
    table.push_back(calls[0] + ", " + calls[1] + ", " + calls[2] + ", " + calls[3] + ':');
    table.insert(table.end(), lines.begin(), lines.end());
  }
  return table;
}

}  // namespace lumora::test
