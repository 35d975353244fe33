// Single-byte helpers that no locale can change.
#pragma once

#include <cstddef>
#include <string_view>

namespace lumora {

// The blanks of the document's grammar.
constexpr bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

constexpr bool isQuote(char c) { return c == '"' || c == '\''; }

constexpr char lowerCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr bool startsWith(std::string_view text, std::string_view prefix) {
  if (text.size() < prefix.size()) return false;
  for (std::size_t i = 0; i < prefix.size(); ++i) {
    if (text[i] != prefix[i]) return false;
  }
  return true;
}

constexpr bool startsWithIgnoringCase(std::string_view text, std::string_view prefix) {
  if (text.size() < prefix.size()) return false;
  for (std::size_t i = 0; i < prefix.size(); ++i) {
    if (lowerCase(text[i]) != lowerCase(prefix[i])) return false;
  }
  return true;
}

// Compares a terminated name without measuring it first: a mismatch costs no more than the common
// part, however long the names are.
constexpr bool equalsIgnoringCase(const char* name, std::string_view other) {
  for (const char c : other) {
    if (*name == '\0' || lowerCase(*name) != lowerCase(c)) return false;
    ++name;
  }
  return *name == '\0';
}

}  // namespace lumora
