// What became of a request to the library, in words for people.
#pragma once

#include <string>
#include <utility>

namespace lumora::host {

enum class Trouble {
  kNone,
  kArgument,  // a value is out of its range or does not fit the picture
  kResource,  // a resource file is missing, unreadable or malformed
  kMemory,    // the host's memory is exhausted
  kThreads,   // a worker thread could not be started; the picture may be partly filtered
  kRefused    // the library refused for another reason
};

struct [[nodiscard]] Result {
  Trouble trouble = Trouble::kNone;
  std::string message;  // a sentence without a full stop

  explicit operator bool() const { return trouble == Trouble::kNone; }
};

inline Result trouble(Trouble kind, std::string message) { return {kind, std::move(message)}; }

}  // namespace lumora::host
