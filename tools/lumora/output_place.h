// What lies where an output shall go, looked at before anything is written.
#pragma once

#include <sys/types.h>

#include <string>

namespace lumora::tool {

struct OutputPlace {
  enum class Kind {
    kFree,        // nothing yet
    kFile,        // a regular file, which an output would replace
    kStream,      // a character device or a pipe: written to, nothing is lost
    kDescriptor,  // one that is open for writing in this process
    kUnusable
  };
  Kind kind = Kind::kFree;
  std::string path;        // absolute, with symbolic links followed
  std::string identity;    // the same for all names of one place
  mode_t permissions = 0;  // of kFile, without the bits that lend the owner's rights
  int descriptor = -1;     // of kDescriptor
  std::string reason;      // of kUnusable
};

// "-" is standard output. A link that leads nowhere is unusable: neither the link nor a file in a
// place that nobody has named would be expected to be written.
OutputPlace findOutputPlace(const std::string& path);

// The identity of a file or folder under any of its names; empty where there is none.
std::string identityOf(const std::string& path);

// Throws a PictureError when both are one file. "-" is standard input and output.
void requireOtherFile(const std::string& input, const std::string& output);

}  // namespace lumora::tool
