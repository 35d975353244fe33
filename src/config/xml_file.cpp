#include <cstdint>

#include "config/characters.h"
#include "config/xml_parser.h"
#include "platform/regular_file.h"

namespace lumora {
namespace {

constexpr std::size_t kGuessedBytes = 200;
// Zeros behind the file's bytes: one for each byte of the longest character.
constexpr std::size_t kTerminatorBytes = 4;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// Guesses the encoding of a file that can be opened; false when it is too short for a document.
bool guessFromFile(const char* fileName, XmlEncoding& encoding) {
  RegularFile file(fileName);
  if (!file) return true;
  std::uint8_t bytes[kGuessedBytes];
  if (file.read(bytes, sizeof bytes) < sizeof bytes) return false;
  const XmlEncoding guess = guessEncoding(bytes, sizeof bytes);
  if (guess != XmlEncoding::kUndetermined) {
    rememberGuessedEncoding(guess);
    encoding = guess;
  }
  return true;
}

XmlStatus readWhole(const char* fileName, XmlText& bytes) {
  RegularFile file(fileName);
  if (!file) return XmlStatus::kFileNotFound;
  if (!file.seekToEnd()) return XmlStatus::kEmptyFile;
  const std::int64_t position = file.position();
  if (position < 1 || !file.seekToStart()) return XmlStatus::kEmptyFile;
  if (position > kLargestDocument) return XmlStatus::kNoText;
  const auto size = static_cast<std::size_t>(position);
  bytes = XmlText::ofSize(size + kTerminatorBytes);
  if (!bytes) return XmlStatus::kNoText;
  if (file.read(bytes.get(), size) < size) return XmlStatus::kEmptyFile;
  for (std::size_t i = 0; i < kTerminatorBytes; ++i) bytes.get()[size + i] = '\0';
  return XmlStatus::kNoError;
}

}  // namespace

XmlNode parseFile(const char* fileName, XmlOutcome& outcome) {
  XmlEncoding encoding = lastGuessedEncoding();
  if (!guessFromFile(fileName, encoding)) {
    outcome = {XmlStatus::kEmptyFile};
    return {};
  }
  XmlText bytes;
  const XmlStatus status = readWhole(fileName, bytes);
  if (status != XmlStatus::kNoError) {
    outcome = {status};
    return {};
  }
  const char* text = bytes.get();
  if (startsWith(text, kByteOrderMark)) text += kByteOrderMark.size();
  return parseText(text, encoding, outcome);
}

}  // namespace lumora
