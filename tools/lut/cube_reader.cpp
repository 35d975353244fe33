#include <charconv>
#include <cmath>

#include "lut/cube_file.h"

namespace lumora::lut {
namespace {

constexpr std::string_view kSpace = " \t\v\f";

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kSpace);
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

// Takes the first word away from the line; empty at its end.
std::string_view takeWord(std::string_view& line) {
  line = trimmed(line);
  const std::string_view word = line.substr(0, line.find_first_of(kSpace));
  line.remove_prefix(word.size());
  return word;
}

bool startsLikeNumber(std::string_view word) { return word.find_first_of("+-.0123456789") == 0; }

template <class Number>
bool parse(std::string_view word, Number& number) {
  if (word.starts_with('+')) word.remove_prefix(1);
  const char* const end = word.data() + word.size();
  const auto result = std::from_chars(word.data(), end, number);
  return result.ec == std::errc() && result.ptr == end;
}

std::string quoted(std::string_view word) {
  std::string text = "'";
  for (const char c : word.substr(0, 40)) text += c >= ' ' && c <= '~' ? c : '?';
  return text + (word.size() > 40 ? "..." : "") + '\'';
}

class Reader {
 public:
  Reader(std::string_view text, Lut& lut) : rest_(text), lut_(lut) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (rest_.starts_with(kByteOrderMark)) rest_.remove_prefix(kByteOrderMark.size());
    lut_ = {};
  }

  CubeFault read() {
    while (!rest_.empty()) {
      readLine(takeLine());
      if (fault_) return fault_;
    }
    checkWhole();
    return fault_;
  }

 private:
  void fail(std::string reason) { fault_ = {line_, std::move(reason)}; }

  // A line ends with a line feed, a carriage return, or both.
  std::string_view takeLine() {
    ++line_;
    const std::string_view line = rest_.substr(0, rest_.find_first_of("\r\n"));
    rest_.remove_prefix(line.size());
    if (rest_.starts_with("\r\n")) rest_.remove_prefix(1);
    if (!rest_.empty()) rest_.remove_prefix(1);
    return line;
  }

  void readLine(std::string_view line) {
    std::string_view words = line;
    const std::string_view first = takeWord(words);
    if (first.empty() || first.starts_with('#')) return;
    // A title may hold anything, a comment's sign too.
    if (first == "TITLE") return;
    line = line.substr(0, line.find('#'));
    words = line;
    takeWord(words);
    if (startsLikeNumber(first)) return readEntry(line);
    if (first == "LUT_3D_SIZE") return readSize(words, false);
    if (first == "LUT_1D_SIZE") return readSize(words, true);
    if (first == "DOMAIN_MIN") return readTriple(words, lut_.lowest);
    if (first == "DOMAIN_MAX") return readTriple(words, lut_.highest);
    if (first == "LUT_3D_INPUT_RANGE" || first == "LUT_1D_INPUT_RANGE") return readRange(words);
  }

  void readSize(std::string_view words, bool is1d) {
    const std::string_view word = takeWord(words);
    const int greatest = is1d ? kGreatest1dSize : kGreatest3dSize;
    int size = 0;
    if (lut_.size != 0) return fail("a second size; files with several tables are not read");
    if (!parse(word, size) || !trimmed(words).empty()) {
      return fail(quoted(word) + " is not a size");
    }
    if (size < kSmallestSize || size > greatest) {
      return fail("the size " + std::to_string(size) + " is outside " +
                  std::to_string(kSmallestSize) + ".." + std::to_string(greatest));
    }
    lut_.is1d = is1d;
    lut_.size = size;
    lut_.entries.reserve(entryCount(is1d, size));
  }

  bool readNumber(std::string_view& words, float& number) {
    const std::string_view word = takeWord(words);
    if (word.empty()) return fail("a number is missing"), false;
    if (!parse(word, number)) return fail(quoted(word) + " is not a number"), false;
    if (!std::isfinite(number)) return fail(quoted(word) + " is not finite"), false;
    return true;
  }

  void readTriple(std::string_view words, Triple& triple) {
    for (float& number : triple) {
      if (!readNumber(words, number)) return;
    }
    if (!trimmed(words).empty()) fail(quoted(trimmed(words)) + " is one too many");
  }

  void readRange(std::string_view words) {
    float lowest = 0, highest = 0;
    if (!readNumber(words, lowest) || !readNumber(words, highest)) return;
    lut_.lowest = {lowest, lowest, lowest};
    lut_.highest = {highest, highest, highest};
  }

  void readEntry(std::string_view line) {
    if (lut_.size == 0) return fail("an entry before LUT_3D_SIZE or LUT_1D_SIZE");
    if (lut_.entries.size() == entryCount(lut_.is1d, lut_.size)) {
      return fail("more entries than the " + std::to_string(lut_.entries.size()) + " of the size");
    }
    Triple entry;
    readTriple(line, entry);
    lut_.entries.push_back(entry);
  }

  void checkWhole() {
    line_ = 0;
    if (lut_.size == 0) return fail("neither LUT_3D_SIZE nor LUT_1D_SIZE is there");
    const std::size_t expected = entryCount(lut_.is1d, lut_.size);
    if (lut_.entries.size() != expected) {
      return fail("has " + std::to_string(lut_.entries.size()) + " entries instead of " +
                  std::to_string(expected));
    }
    for (int channel = 0; channel < 3; ++channel) {
      if (!(lut_.lowest[channel] < lut_.highest[channel])) return fail("the domain is empty");
    }
  }

  std::string_view rest_;
  Lut& lut_;
  int line_ = 0;
  CubeFault fault_;
};

}  // namespace

CubeFault readCube(std::string_view text, Lut& lut) { return Reader(text, lut).read(); }

}  // namespace lumora::lut
