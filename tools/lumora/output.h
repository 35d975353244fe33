// Where results go: a file that appears complete or not at all, a device or pipe, or a descriptor.
#pragma once

#include <cstddef>
#include <string>

#include "output_place.h"

namespace lumora::tool {

// What becomes of a file that exists where an output shall go.
struct OutputRules {
  bool force = false;       // it is replaced; otherwise that is an error and it stays
  std::string backup = {};  // the name it keeps then, which must be free; empty: it is gone
};

// Writes beside the final path and takes its place on commit(), with the permissions of a file that
// it replaces. Something else than a regular file is written to directly; a pipe needs a reader by
// then. Every failure is a PictureError that names the path.
class Output {
 public:
  // "-" is standard output.
  explicit Output(const std::string& path, const OutputRules& rules = {});
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;
  ~Output();  // without commit(): nothing appears under the final path

  void write(const void* bytes, std::size_t count);
  void commit();
  // All of it at once.
  void finish(const void* bytes, std::size_t count);

 private:
  [[noreturn]] void fail(const char* what, int error) const;
  [[noreturn]] void refuseExisting() const;
  void openDirectly();
  void createBeside();

  std::string name_;  // as the user knows it
  OutputPlace place_;
  OutputRules rules_;
  std::string temporaryPath_;
  int descriptor_ = -1;
};

// With the folders above it; nothing for an empty name. Throws a PictureError.
void makeFolder(const std::string& folder);

}  // namespace lumora::tool
