#include "facts_json.h"

#include <algorithm>
#include <cctype>

#include "modes/modes.h"

namespace lumora::web {
namespace {

std::string quoted(const char* text) {
  if (text == nullptr) return "null";
  std::string result = "\"";
  for (; *text != '\0'; ++text) {
    if (*text == '"' || *text == '\\') result += '\\';
    result += *text == '\n' ? ' ' : *text;  // line breaks are the terminal's
  }
  return result + '"';
}

// Joins members that begin with a comma.
std::string member(const char* name, const std::string& value) {
  return ",\"" + std::string(name) + "\":" + value;
}

std::string closed(char open, std::string members, char close) {
  if (members.empty()) return {open, close};
  members[0] = open;
  return members + close;
}

std::string jsonOf(const SettingFacts& setting) {
  std::string json = member("name", quoted(setting.name)) + member("value", quoted(setting.value)) +
                     member("numbers", std::to_string(setting.numbers)) +
                     member("help", quoted(setting.help));
  if (setting.numbers > 0 && setting.highest < kAnyPlace) {
    json += member("lowest", std::to_string(setting.lowest)) +
            member("highest", std::to_string(setting.highest));
  }
  if (setting.standard != kNoStandard) json += member("default", std::to_string(setting.standard));
  return closed('{', json, '}');
}

// The words that the look is known by: "retro" for fugu, otherwise its own name.
std::string titleOf(const ModeFacts& mode) {
  std::string title = mode.alias != nullptr ? mode.alias : mode.name;
  std::replace(title.begin(), title.end(), '-', ' ');
  title[0] = static_cast<char>(std::toupper(title[0]));
  return title;
}

std::string settingsOf(const ModeFacts& mode) {
  std::string json;
  for (int i = 0; i < kSettingCount; ++i) {
    if (mode.reads(static_cast<Setting>(i))) json += ',' + quoted(kSettings[i].name);
  }
  return closed('[', json, ']');
}

std::string jsonOf(const ModeFacts& mode) {
  return closed(
      '{',
      member("mode", std::to_string(mode.number)) + member("name", quoted(mode.name)) +
          member("alias", quoted(mode.alias)) + member("title", quoted(titleOf(mode).c_str())) +
          member("kind", quoted(mode.kind)) + member("summary", quoted(mode.summary)) +
          member("strength", quoted(describe(mode.strength))) +
          member("usesStrength", mode.strength == StrengthUse::kUnused ? "false" : "true") +
          member("texture", quoted(mode.texture.words)) +
          member("formats", mode.rgbaOnly ? R"(["rgba"])" : R"(["rgba","nv21","nv12"])") +
          member("settings", settingsOf(mode)),
      '}');
}

}  // namespace

std::string factsJson() {
  std::string settings, looks;
  for (const SettingFacts& setting : kSettings) settings += ',' + jsonOf(setting);
  for (const ModeFacts& mode : kModes) looks += ',' + jsonOf(mode);
  return closed('{',
                member("settings", closed('[', settings, ']')) +
                    member("looks", closed('[', looks, ']')) +
                    member("shortestSide", std::to_string(LUMORA_SHORTEST_SIDE)) +
                    member("longestSide", std::to_string(LUMORA_LONGEST_SIDE)) +
                    member("fullStrength", std::to_string(LUMORA_FULL_STRENGTH)) +
                    member("strongest", std::to_string(LUMORA_STRONGEST)),
                '}');
}

}  // namespace lumora::web
