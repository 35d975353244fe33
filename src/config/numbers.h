// Numbers in texts, read the same way under every locale and word size. Blanks, an optional sign
// and decimal digits make a number; it ends at the first other character. A number outside its
// type's range becomes the limit it exceeds.
#pragma once

#include <cstdint>

namespace lumora {

// The number a text begins with. False, and value untouched: there is none.
bool readLeadingInt(const char* text, std::int32_t& value);

// Reads up to `count` numbers that follow one another and returns how many were read; the other
// entries stay as they were. Reading ends at what is no number, and behind a number that was out
// of range. Unsigned numbers may have a "-" and then wrap modulo 2^32.
int readNumbers(const char* text, std::uint32_t* out, int count);
int readNumbers(const char* text, std::int32_t* out, int count);
int readNumbers(const char* text, std::int16_t* out, int count);

}  // namespace lumora
