// Texts with numbers in them that are put together while compiling.
#pragma once

namespace lumora {

struct JoinedText {
  char text[120] = {};
  int length = 0;

  // A text beyond the room is no constant expression.
  constexpr void append(char letter) { text[length++] = letter; }
  constexpr void append(const char* words) {
    while (*words != '\0') append(*words++);
  }
  constexpr void append(int number) {
    if (number >= 10) append(number / 10);
    append(static_cast<char>('0' + number % 10));
  }
};

template <class... Parts>
consteval JoinedText joined(Parts... parts) {
  JoinedText result;
  (result.append(parts), ...);
  return result;
}

}  // namespace lumora
