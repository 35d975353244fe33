#include "standard_descriptors.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iostream>

#include "errors.h"

namespace lumora::tool {
namespace {

namespace fs = std::filesystem;

constexpr int kMostLinks = 40;

int realStandardOutput = STDOUT_FILENO;

// /proc/PID/fd of this process, or a thread's /proc/PID/task/TID/fd.
bool isOwnDescriptorFolder(const fs::path& folder) {
  std::error_code missing;
  const fs::path own = fs::read_symlink("/proc/self", missing);
  return !missing && folder.filename() == "fd" &&
         folder.string().starts_with(text("/proc/", own.string(), '/'));
}

std::optional<int> numberOf(const std::string& name) {
  int number = -1;
  const char* const end = name.data() + name.size();
  const auto [stop, error] = std::from_chars(name.data(), end, number);
  if (error != std::errc() || stop != end || number < 0) return std::nullopt;
  return number;
}

}  // namespace

void occupyStandardDescriptors() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(descriptor, F_GETFD) >= 0) continue;
    // The lowest free number is this one.
    const int mode = descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY;
    if (::open("/dev/null", mode) != descriptor) {
      throw PictureError(text("/dev/null cannot be opened: ", std::strerror(errno)));
    }
  }
}

void takeStandardOutput(bool verbose) {
  std::signal(SIGPIPE, SIG_IGN);
  std::fflush(stdout);
  realStandardOutput = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  const int elsewhere = verbose ? ::dup(STDERR_FILENO) : ::open("/dev/null", O_WRONLY);
  if (realStandardOutput < 0 || elsewhere < 0 || ::dup2(elsewhere, STDOUT_FILENO) < 0) {
    throw PictureError(text("standard output cannot be set aside: ", std::strerror(errno)));
  }
  ::close(elsewhere);
}

void finishListing() {
  if (realStandardOutput != STDOUT_FILENO) return;
  std::cout.flush();
  if (!std::cout) throw PictureError("standard output: writing failed");
}

// The links under /proc lead to what the descriptor is open on. Opening that anew would begin at
// the start of a file, and fail for a socket; so the last link is not followed, but read.
std::optional<int> outputDescriptorOf(const std::string& path) {
  if (path == "-") return realStandardOutput;
  fs::path name = path;
  for (int link = 0; link < kMostLinks; ++link) {
    std::error_code error;
    const fs::path folder = fs::canonical(name.has_parent_path() ? name.parent_path() : ".", error);
    if (error) return std::nullopt;
    if (isOwnDescriptorFolder(folder)) {
      const auto number = numberOf(name.filename().string());
      return number == STDOUT_FILENO ? realStandardOutput : number;
    }
    const fs::path target = fs::read_symlink(folder / name.filename(), error);
    if (error) return std::nullopt;
    name = folder / target;
  }
  return std::nullopt;
}

}  // namespace lumora::tool
