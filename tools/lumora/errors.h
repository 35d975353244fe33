// Exit codes of the tool and the errors that lead to them. A status of the library never becomes an
// exit code: 256 would read as 0.
#pragma once

#include <sstream>
#include <stdexcept>
#include <string>

namespace lumora::tool {

enum ExitCode {
  kExitDone = 0,
  kExitPictureFailed = 1,
  kExitUsage = 2,
  kExitResources = 3,
  kExitNoPicture = 4
};

// A picture could not be read, filtered or written; other pictures may go on.
struct PictureError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// The command line cannot be carried out as it stands.
struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// The texture pack or the tuning document is missing or malformed.
struct ResourceError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Strings the values together.
template <class... Values>
std::string text(const Values&... values) {
  std::ostringstream joined;
  (joined << ... << values);
  return joined.str();
}

}  // namespace lumora::tool
