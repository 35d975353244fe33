#include "core/sessions.h"

#include <algorithm>
#include <list>
#include <thread>

namespace lumora::python {
namespace {

struct Kept {
  SessionKey key;
  std::unique_ptr<host::Session> session;
};

// The last used is in front. The interpreter's lock guards the list.
std::list<Kept>& keptSessions() {
  static std::list<Kept> sessions;
  return sessions;
}

// As many as threads can filter at a time, so that each finds one. The count of processors is a
// file, which is not read for every call.
std::size_t mostKept() {
  static const std::size_t most = std::max(4u, std::thread::hardware_concurrency());
  return most;
}

}  // namespace

bool SessionKey::operator==(const SessionKey& other) const {
  return textureMode == other.textureMode && size.width == other.size.width &&
         size.height == other.size.height && direction == other.direction &&
         resources == other.resources;
}

SessionKey keyFor(const ModeFacts& mode, host::Size size, int direction, std::string resources) {
  if (!mode.texture) return {0, {}, 0, std::move(resources)};
  return {mode.number, size, direction, std::move(resources)};
}

std::unique_ptr<host::Session> takeSession(const ModeFacts& mode, const SessionKey& key) {
  std::list<Kept>& kept = keptSessions();
  const auto found =
      std::find_if(kept.begin(), kept.end(), [&](const Kept& k) { return k.key == key; });
  if (found != kept.end()) {
    std::unique_ptr<host::Session> session = std::move(found->session);
    kept.erase(found);
    return session;
  }
  auto session = std::make_unique<host::Session>();
  open(*session, mode, key.resources, key.size, key.direction);
  return session;
}

void keepSession(SessionKey key, std::unique_ptr<host::Session> session) {
  std::list<Kept>& kept = keptSessions();
  kept.push_front({std::move(key), std::move(session)});
  if (kept.size() > mostKept()) kept.pop_back();
}

}  // namespace lumora::python
