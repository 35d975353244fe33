#include "embedded_pictures.h"

#include <algorithm>
#include <cstddef>
#include <string>

namespace lumora::tool {
namespace {

// 192 bytes in Base64, 128 in hexadecimal: no picture is as small, and no word or number as long.
constexpr std::size_t kLongestRun = 256;

constexpr std::string_view kJpegWord("Photoshop 3.0\0", 14);
constexpr std::string_view kResourceMark("8BIM");
constexpr unsigned kIptcResource = 0x0404;
constexpr std::size_t kResourceHead = 6;  // mark and number
constexpr std::uint8_t kRecordMark = 0x1C;
constexpr std::size_t kRecordHead = 5;  // mark, record, data set, two bytes of length

bool isDigit(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' ||
         c == '/' || c == '=' || c == '-' || c == '_';
}

// The end of a line break at the place, as XML or text has it, with the next line's indentation;
// the place itself where there is none.
std::size_t behindBreak(std::string_view text, std::size_t at) {
  const std::size_t start = at;
  while (at < text.size()) {
    const std::string_view rest = text.substr(at);
    if (rest[0] == '\n' || rest[0] == '\r') {
      ++at;
    } else if (rest.starts_with("&#")) {
      const std::size_t end = rest.substr(0, 8).find(';');
      if (end == rest.npos) break;
      at += end + 1;
    } else if (at > start && (rest[0] == ' ' || rest[0] == '\t')) {
      ++at;
    } else {
      break;
    }
  }
  return at;
}

struct Run {
  std::size_t digits = 0;
  std::size_t end = 0;
};

// Digits, broken by line ends at most, from a digit on.
Run runAt(std::string_view text, std::size_t at) {
  Run run{0, at};
  while (run.end < text.size()) {
    while (run.end < text.size() && isDigit(text[run.end])) ++run.end, ++run.digits;
    const std::size_t next = behindBreak(text, run.end);
    if (next == run.end || next == text.size() || !isDigit(text[next])) break;
    run.end = next;
  }
  return run;
}

// Calls visit(text, isPicture) with the pieces of the text in order.
template <class Visit>
void split(std::string_view text, Visit visit) {
  std::size_t plain = 0;
  for (std::size_t at = 0; at < text.size();) {
    if (!isDigit(text[at])) {
      ++at;
      continue;
    }
    const Run run = runAt(text, at);
    if (run.digits >= kLongestRun) {
      visit(text.substr(plain, at - plain), false);
      visit(text.substr(at, run.end - at), true);
      plain = run.end;
    }
    at = run.end;
  }
  visit(text.substr(plain), false);
}

unsigned big16(const Bytes& bytes, std::size_t at) { return bytes[at] << 8 | bytes[at + 1]; }

// Records up to the first thing that is none, without previews (2:200 to 2:202) and without those
// of extended length, which no other field needs.
Bytes plainRecords(const Bytes& bytes, std::size_t at, std::size_t end) {
  Bytes records;
  while (end - at >= kRecordHead && bytes[at] == kRecordMark) {
    const unsigned length = big16(bytes, at + 3);
    if (length >= 0x8000 || length > end - at - kRecordHead) break;
    const bool isPreview = bytes[at + 1] == 2 && bytes[at + 2] >= 200 && bytes[at + 2] <= 202;
    const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(at);
    const auto last = first + static_cast<std::ptrdiff_t>(kRecordHead + length);
    const bool isKnown = bytes[at + 1] == 1 || bytes[at + 1] == 2;
    if (isKnown && !isPreview) records.insert(records.end(), first, last);
    at += kRecordHead + length;
  }
  return records;
}

std::size_t even(std::size_t count) { return count + count % 2; }

// Where in Photoshop's resources the records lie: begin and end, equal where they are not there.
std::pair<std::size_t, std::size_t> findRecords(const Bytes& bytes, std::size_t at) {
  const std::string_view all(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  while (all.substr(at).starts_with(kResourceMark) && all.size() - at > kResourceHead) {
    const unsigned number = big16(bytes, at + 4);
    const std::size_t name = at + kResourceHead;
    const std::size_t lengthAt = name + even(bytes[name] + std::size_t{1});
    if (lengthAt + 4 > all.size()) break;
    const std::size_t length =
        std::size_t{big16(bytes, lengthAt)} << 16 | big16(bytes, lengthAt + 2);
    const std::size_t data = lengthAt + 4;
    if (length > all.size() - data) break;
    if (number == kIptcResource) return {data, data + length};
    at = std::min(all.size(), data + even(length));
  }
  return {0, 0};
}

}  // namespace

bool holdsPicture(std::string_view text) {
  bool holds = false;
  split(text, [&](std::string_view, bool isPicture) { holds = holds || isPicture; });
  return holds;
}

Bytes xmpWithoutPictures(Bytes xmp) {
  const std::string_view text(reinterpret_cast<const char*>(xmp.data()), xmp.size());
  if (text.find('\0') != text.npos) return {};
  Bytes plain;
  split(text, [&](std::string_view piece, bool isPicture) {
    if (!isPicture) plain.insert(plain.end(), piece.begin(), piece.end());
  });
  return plain;
}

Bytes iptcWithoutPictures(const Bytes& block) {
  const std::string_view all(reinterpret_cast<const char*>(block.data()), block.size());
  const std::size_t resources = all.starts_with(kJpegWord) ? kJpegWord.size() : 0;
  if (!all.substr(resources).starts_with(kResourceMark)) {
    return plainRecords(block, 0, block.size());
  }
  const auto [begin, end] = findRecords(block, resources);
  return plainRecords(block, begin, end);
}

Bytes iptcForJpeg(const Bytes& records) {
  if (records.empty()) return {};
  Bytes block(kJpegWord.begin(), kJpegWord.end());
  block.insert(block.end(), kResourceMark.begin(), kResourceMark.end());
  // The number, an empty name and the length.
  for (const std::size_t byte : {kIptcResource >> 8, kIptcResource & 255u, 0u, 0u}) {
    block.push_back(static_cast<std::uint8_t>(byte));
  }
  for (const unsigned shift : {24, 16, 8, 0}) {
    block.push_back(static_cast<std::uint8_t>(records.size() >> shift));
  }
  block.insert(block.end(), records.begin(), records.end());
  block.resize(even(block.size()));
  return block;
}

}  // namespace lumora::tool
