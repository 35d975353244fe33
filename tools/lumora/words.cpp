#include "words.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdint>
#include <numeric>
#include <sstream>
#include <utility>

#include "errors.h"

namespace lumora::tool {
namespace {

bool readInteger(std::string_view digits, int& number) {
  const char* end = digits.data() + digits.size();
  const auto [stopped, error] = std::from_chars(digits.data(), end, number);
  return error == std::errc() && stopped == end;
}

// Levenshtein's distance, one row of the table at a time.
std::size_t editDistance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i);
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t replaced = diagonal + (a[i - 1] != b[j - 1]);
      diagonal = row[j];
      row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
    }
  }
  return row[b.size()];
}

}  // namespace

std::string lowerCase(std::string_view word) {
  std::string lower(word);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return lower;
}

std::vector<int> parseIntegers(const std::string& value, char separator, std::size_t count,
                               const char* form) {
  std::vector<int> numbers;
  std::string_view rest = value;
  while (true) {
    const std::size_t end = std::min(rest.find(separator), rest.size());
    int number = 0;
    if (!readInteger(rest.substr(0, end), number)) break;
    numbers.push_back(number);
    if (end == rest.size()) {
      if (numbers.size() != count) break;
      return numbers;
    }
    rest.remove_prefix(end + 1);
  }
  throw UsageError(text("'", value, "' is not of the form ", form));
}

std::vector<std::string> splitAtCommas(const std::string& value) {
  std::vector<std::string> parts;
  std::istringstream stream(value);
  for (std::string part; std::getline(stream, part, ',');) parts.push_back(part);
  return parts;
}

int parseInteger(const std::string& value, int lowest, int highest) {
  int number = 0;
  if (!readInteger(value, number)) throw UsageError(text("'", value, "' is not a whole number"));
  if (number < lowest || number > highest) {
    throw UsageError(text(number, " is outside ", lowest, "..", highest));
  }
  return number;
}

Size parseSize(const std::string& value) {
  const std::vector<int> sides = parseIntegers(lowerCase(value), 'x', 2, "WIDTHxHEIGHT");
  if (sides[0] <= 0 || sides[1] <= 0) {
    throw UsageError(text("'", value, "' is not of the form WIDTHxHEIGHT"));
  }
  return {static_cast<unsigned>(sides[0]), static_cast<unsigned>(sides[1])};
}

std::string nearestWord(std::string_view word, std::span<const std::string> candidates) {
  const std::string typed = lowerCase(word);
  std::string best;
  std::size_t bestDistance = SIZE_MAX;
  for (const std::string& candidate : candidates) {
    const std::size_t distance = editDistance(typed, candidate);
    if (distance < bestDistance) {
      best = candidate;
      bestDistance = distance;
    }
  }
  // A third of the letters may be wrong, and at least two.
  const std::size_t allowed = std::max<std::size_t>(2, typed.size() / 3);
  return bestDistance <= allowed && bestDistance < typed.size() ? best : std::string();
}

std::string didYouMean(std::string_view word, std::span<const std::string> candidates) {
  const std::string near = nearestWord(word, candidates);
  return near.empty() ? near : text("; did you mean '", near, "'?");
}

}  // namespace lumora::tool
