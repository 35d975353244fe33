#include "modes.h"

#include <algorithm>
#include <cctype>

#include "errors.h"
#include "words.h"

namespace lumora::tool {
namespace {

// "Colour_Fix" and "color-fix" are both "colorfix".
std::string plainForm(const std::string& name) {
  std::string plain = lowerCase(name);
  std::erase_if(plain, [](char c) { return c == '-' || c == '_' || c == ' '; });
  if (const auto at = plain.find("colour"); at != std::string::npos) plain.erase(at + 4, 1);
  return plain;
}

}  // namespace

std::vector<std::string> modeNames() {
  std::vector<std::string> names;
  for (const Mode& mode : kModes) {
    names.emplace_back(mode.name);
    if (mode.alias != nullptr) names.emplace_back(mode.alias);
  }
  return names;
}

const Mode& findMode(const std::string& nameOrNumber) {
  if (!nameOrNumber.empty() && std::all_of(nameOrNumber.begin(), nameOrNumber.end(),
                                           [](unsigned char c) { return std::isdigit(c) != 0; })) {
    return kModes[static_cast<std::size_t>(parseInteger(nameOrNumber, 1, kModes.size())) - 1];
  }
  for (const Mode& mode : kModes) {
    for (const char* name : {mode.name, mode.alias}) {
      if (name != nullptr && plainForm(name) == plainForm(nameOrNumber)) return mode;
    }
  }
  const std::string hint = didYouMean(nameOrNumber, modeNames());
  throw UsageError(text("there is no look '", nameOrNumber, "'",
                        hint.empty() ? "; 'lumora looks' lists them all" : hint));
}

}  // namespace lumora::tool
