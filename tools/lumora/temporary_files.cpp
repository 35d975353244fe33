#include "temporary_files.h"

#include <fcntl.h>
#include <pthread.h>
#include <stdlib.h>
#include <unistd.h>

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

bool isIgnored(int signal) {
  struct sigaction action;
  return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
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
  sigset_t interrupts;
  sigemptyset(&interrupts);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
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
  std::string name = stem + "XXXXXX";
  const std::lock_guard lock(registry().mutex);
  if (::mkdtemp(name.data()) == nullptr) return false;
  path = name;
  registry().paths.insert(name);
  return true;
}

bool renameTemporaryFile(const std::string& path, const std::string& finalPath) {
  const std::lock_guard lock(registry().mutex);
  if (std::rename(path.c_str(), finalPath.c_str()) != 0) return false;
  registry().paths.erase(path);
  return true;
}

void removeTemporary(const std::string& path) {
  const std::lock_guard lock(registry().mutex);
  removeFromDisk(path);
  registry().paths.erase(path);
}

}  // namespace lumora::tool
