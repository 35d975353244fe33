#include "config/numbers.h"

#include <algorithm>
#include <limits>

namespace lumora {
namespace {

// Above every magnitude that any of the types can hold.
constexpr std::uint64_t kOutOfRange = std::uint64_t{1} << 32;

struct Number {
  const char* end;  // null: no number
  bool negative;
  std::uint64_t magnitude;  // at most kOutOfRange
};

// Wider than the grammar's blanks: an entity may put any of these into a text.
bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

bool isDigit(char c) { return c >= '0' && c <= '9'; }

Number scanNumber(const char* text) {
  while (isSpace(*text)) ++text;
  const bool negative = *text == '-';
  if (negative || *text == '+') ++text;
  if (!isDigit(*text)) return {nullptr, false, 0};
  std::uint64_t magnitude = 0;
  for (; isDigit(*text); ++text) {
    magnitude = std::min(magnitude * 10 + static_cast<unsigned>(*text - '0'), kOutOfRange);
  }
  return {text, negative, magnitude};
}

// False: the number was out of range and out is the limit.
bool store(const Number& number, std::uint32_t& out) {
  const bool fits = number.magnitude < kOutOfRange;
  const auto magnitude = fits ? static_cast<std::uint32_t>(number.magnitude)
                              : std::numeric_limits<std::uint32_t>::max();
  out = fits && number.negative ? 0 - magnitude : magnitude;
  return fits;
}

template <class Signed>
bool store(const Number& number, Signed& out) {
  using Limits = std::numeric_limits<Signed>;
  const std::int64_t value = number.negative ? -static_cast<std::int64_t>(number.magnitude)
                                             : static_cast<std::int64_t>(number.magnitude);
  const auto clamped = std::clamp<std::int64_t>(value, Limits::min(), Limits::max());
  out = static_cast<Signed>(clamped);
  return clamped == value;
}

template <class T>
int readList(const char* text, T* out, int count) {
  for (int i = 0; i < count; ++i) {
    const Number number = scanNumber(text);
    if (number.end == nullptr) return i;
    if (!store(number, out[i])) return i + 1;
    text = number.end;
  }
  return count;
}

}  // namespace

bool readLeadingInt(const char* text, std::int32_t& value) {
  return readList(text, &value, 1) == 1;
}

int readNumbers(const char* text, std::uint32_t* out, int count) {
  return readList(text, out, count);
}
int readNumbers(const char* text, std::int32_t* out, int count) {
  return readList(text, out, count);
}
int readNumbers(const char* text, std::int16_t* out, int count) {
  return readList(text, out, count);
}

}  // namespace lumora
