// Sessions for single calls. Opening one reads the texture pack, so the last ones are kept.
#pragma once

#include <memory>
#include <string>

#include "core/arguments.h"

namespace lumora::python {

// What a session was opened for.
struct SessionKey {
  std::uint32_t textureMode = 0;  // 0 for all looks without a texture
  host::Size size;                // 0 x 0 for these
  int direction = 0;
  std::string resources;

  bool operator==(const SessionKey& other) const;
};

SessionKey keyFor(const ModeFacts& mode, host::Size size, int direction, std::string resources);

// One that nobody else has meanwhile: kept or opened. Raises as open() does.
std::unique_ptr<host::Session> takeSession(const ModeFacts& mode, const SessionKey& key);
// Keeps the session for the next call like this one.
void keepSession(SessionKey key, std::unique_ptr<host::Session> session);

}  // namespace lumora::python
