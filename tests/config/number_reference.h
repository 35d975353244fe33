// Numbers in texts as the standard library reads them.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <sstream>

#include "config/numbers.h"

namespace lumora::test {

inline bool isLeadingIntRight(const char* text) {
  constexpr std::int32_t kDefault = -77;
  char* end = nullptr;
  const long long number = std::strtoll(text, &end, 10);
  const bool expected = end != text;
  std::int32_t value = kDefault;
  return readLeadingInt(text, value) == expected &&
         value == (expected ? std::clamp<long long>(number, INT32_MIN, INT32_MAX) : kDefault);
}

template <class T>
bool isListRight(const char* text) {
  T ours[] = {99, 99, 99, 99, 99}, theirs[] = {99, 99, 99, 99, 99};
  constexpr int kCount = static_cast<int>(std::size(ours));
  std::istringstream stream(text);
  int expected = 0;
  // A stream fails at a number out of range, but stores the limit first.
  for (T n = 0; expected < kCount && stream && (stream >> n || n != 0); n = 0) {
    theirs[expected++] = n;
  }
  return readNumbers(text, ours, kCount) == expected && std::equal(ours, ours + kCount, theirs);
}

// Whether what is read of the text is right, as one number and as a list of each type.
inline bool areNumbersRight(const char* text) {
  return isLeadingIntRight(text) && isListRight<std::uint32_t>(text) &&
         isListRight<std::int32_t>(text) && isListRight<std::int16_t>(text);
}

}  // namespace lumora::test
