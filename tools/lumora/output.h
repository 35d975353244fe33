// Where results go: a file that appears complete or not at all, or standard output.
#pragma once

#include <cstddef>
#include <string>

namespace lumora::tool {

// Sets the real standard output aside for picture data and returns its descriptor. From then on
// descriptor 1, where the library prints, leads to standard error or, unless verbose, nowhere.
int takeStandardOutput(bool verbose);

// Writes beside the final path and takes its place on commit(). Something else than a regular file
// (a device, a pipe) is written to directly. Every failure is a PictureError that names the path.
class Output {
 public:
  explicit Output(const std::string& path);
  // Standard output, as takeStandardOutput() returned it.
  explicit Output(int standardOutput);
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;
  ~Output();  // without commit(): nothing appears under the final path

  void write(const void* bytes, std::size_t count);
  void commit();

 private:
  [[noreturn]] void fail(const char* what, int error) const;
  void openDirectly();
  void createBeside();

  std::string name_;       // as the user knows it
  std::string finalPath_;  // with symbolic links followed
  std::string temporaryPath_;
  int descriptor_ = -1;
};

}  // namespace lumora::tool
