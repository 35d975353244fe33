// Character encodings of documents: how long a character is, and which encoding a file has.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lumora {

enum class XmlEncoding : std::uint8_t {
  kUndetermined = 0,  // no guess; the encoding of an earlier document stays in use
  kUtf8 = 1,
  kSingleByte = 2,
  kShiftJis = 3,
  kGb2312 = 4,
  kBig5 = 5,
  kGbk = 6,
};

// Bytes of a character by its first byte. Only the zero byte has length 0: it ends the text.
struct CharacterLengths {
  std::uint8_t of[256];

  constexpr std::size_t operator[](char first) const {
    return of[static_cast<unsigned char>(first)];
  }
};

const CharacterLengths& characterLengths(XmlEncoding encoding);

// Guesses from the first bytes of a file and looks at nothing beyond them.
XmlEncoding guessEncoding(const std::uint8_t* bytes, std::size_t count);

// The last encoding guessed in this process. A document whose own encoding cannot be guessed is
// read with it; every parse looks at it once, so documents may be loaded on several threads.
XmlEncoding lastGuessedEncoding();
void rememberGuessedEncoding(XmlEncoding encoding);

}  // namespace lumora
