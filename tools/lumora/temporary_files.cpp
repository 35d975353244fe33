#include "temporary_files.h"

#include <fcntl.h>
#include <pthread.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <mutex>
#include <set>
#include <thread>

namespace lumora::tool {
namespace {

// Lives as long as the process, because the waiting thread does.
struct Registry {
  std::mutex mutex;
  std::set<std::string> paths;
};

Registry& registry() {
  static Registry* const only = new Registry;
  return *only;
}

void removeFromDisk(const std::string& path) {
  std::error_code ignored;
  std::filesystem::remove_all(path, ignored);
}

// A closed pipe would end the process in the thread that writes, with everything left behind.
void surviveClosedPipes() { std::signal(SIGPIPE, SIG_IGN); }

bool isIgnored(int signal) {
  struct sigaction action;
  return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

bool renameToFreeName(const std::string& from, const std::string& to) {
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
  // Some file systems cannot do it in one step.
  if (errno != EINVAL && errno != ENOSYS) return false;
  struct stat status;
  if (::lstat(to.c_str(), &status) == 0) {
    errno = EEXIST;
    return false;
  }
  return std::rename(from.c_str(), to.c_str()) == 0;
}

// With a second link the file never lacks its first name. Not every file system has links.
bool keepAs(const std::string& backup, const std::string& path) {
  if (::link(path.c_str(), backup.c_str()) == 0) return true;
  return errno != EEXIST && renameToFreeName(path, backup);
}

// Renaming does nothing where both names are links to the file.
void giveBack(const std::string& backup, const std::string& path) {
  if (std::rename(backup.c_str(), path.c_str()) == 0) ::unlink(backup.c_str());
}

// The mutex stays locked, so that no file is created or renamed between here and the end.
[[noreturn]] void endBy(int signal) {
  registry().mutex.lock();
  for (const std::string& path : registry().paths) removeFromDisk(path);
  std::signal(signal, SIG_DFL);
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, signal);
  pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
  ::raise(signal);
  ::_exit(128 + signal);
}

}  // namespace

void removeTemporariesOnInterrupt() {
  std::signal(SIGXFSZ, SIG_IGN);
  sigset_t interrupts;
  sigemptyset(&interrupts);
  for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGUSR1, SIGUSR2, SIGALRM, SIGVTALRM,
                           SIGPROF, SIGXCPU, SIGIO, SIGPWR, SIGSTKFLT}) {
    if (!isIgnored(signal)) sigaddset(&interrupts, signal);
  }
  for (int signal = SIGRTMIN; signal <= SIGRTMAX; ++signal) {
    if (!isIgnored(signal)) sigaddset(&interrupts, signal);
  }
  // Blocked here and in every later thread: only the waiting thread takes them.
  pthread_sigmask(SIG_BLOCK, &interrupts, nullptr);
  registry();
  std::thread([interrupts] {
    int signal = 0;
    if (sigwait(&interrupts, &signal) == 0) endBy(signal);
  }).detach();
}

int createTemporaryFile(const std::string& stem, std::string& path) {
  surviveClosedPipes();
  std::string name = stem + "XXXXXX";
  const std::lock_guard lock(registry().mutex);
  const int descriptor = ::mkostemp(name.data(), O_CLOEXEC);
  if (descriptor >= 0) {
    path = name;
    registry().paths.insert(name);
  }
  return descriptor;
}

bool createTemporaryFolder(const std::string& stem, std::string& path) {
  surviveClosedPipes();
  std::string name = stem + "XXXXXX";
  const std::lock_guard lock(registry().mutex);
  if (::mkdtemp(name.data()) == nullptr) return false;
  path = name;
  registry().paths.insert(name);
  return true;
}

bool renameTemporaryFile(const std::string& path, const std::string& finalPath, bool replaces,
                         const std::string& backup) {
  const std::lock_guard lock(registry().mutex);
  if (!backup.empty() && !keepAs(backup, finalPath)) return false;
  const bool renamed = replaces ? std::rename(path.c_str(), finalPath.c_str()) == 0
                                : renameToFreeName(path, finalPath);
  if (!renamed) {
    const int error = errno;
    if (!backup.empty()) giveBack(backup, finalPath);
    errno = error;
    return false;
  }
  registry().paths.erase(path);
  return true;
}

void removeTemporary(const std::string& path) {
  const std::lock_guard lock(registry().mutex);
  removeFromDisk(path);
  registry().paths.erase(path);
}

}  // namespace lumora::tool
