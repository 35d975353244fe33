// Values that people type: numbers, sizes, positions, and names with a slip in them.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/session.h"

namespace lumora::tool {

using host::Size;

std::string lowerCase(std::string_view word);

// Exactly `count` integers with the separator between them. Throws a UsageError that shows `form`.
std::vector<int> parseIntegers(const std::string& value, char separator, std::size_t count,
                               const char* form);
// "a,b" is two parts.
std::vector<std::string> splitAtCommas(const std::string& value);
// One integer in lowest..highest.
int parseInteger(const std::string& value, int lowest, int highest);
// "1280x720"
Size parseSize(const std::string& value);

// The candidate with the fewest single-letter changes; empty when none is near enough to be what
// was meant.
std::string nearestWord(std::string_view word, std::span<const std::string> candidates);

// "; did you mean 'X'?", or nothing when no candidate is near.
std::string didYouMean(std::string_view word, std::span<const std::string> candidates);

}  // namespace lumora::tool
