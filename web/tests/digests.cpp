// Exports the table of digests as the library's own tests make it.
#include <string>

#include "reliability/tables.h"

#define LUMORA_EXPORT extern "C" __attribute__((used, visibility("default")))

// Lines, each with its end; valid until the next call.
LUMORA_EXPORT const char* lumora_digests(bool onCaller) {
  static std::string text;
  text.clear();
  for (const std::string& line : lumora::test::digestTable("", onCaller, false)) {
    text += line + '\n';
  }
  return text.c_str();
}

// The loader says so; every table opens handles of its own.
LUMORA_EXPORT bool lumora_pack_changed() { return true; }
