#include "decoding_process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <thread>

#include "errors.h"
#include "image_library.h"

extern char** environ;

namespace lumora::tool {
namespace {

using vips::VImage;

// Behind it stands how many bytes of samples are expected.
constexpr const char* kWord = "decode-standard-input";
constexpr std::size_t kLongestReason = 500;

// What decoders were seen to take stays below half of these.
constexpr std::uint64_t kMemory = std::uint64_t{96} << 20;
constexpr std::uint64_t kMemoryOfThread = std::uint64_t{2} << 20;
constexpr std::uint64_t kMemoryPerSample = 24;
constexpr std::uint64_t kSeconds = 10;
constexpr std::uint64_t kSamplesPerSecond = 1'000'000;
// A decoder may wait for a thread that memory did not suffice for.
constexpr std::uint64_t kWaitingFactor = 3;

#ifdef LUMORA_SANITIZED
constexpr bool kLimitsMemory = false;  // sanitizers keep memory of their own
#else
constexpr bool kLimitsMemory = true;
#endif

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {
    if (number < 0) throw PictureError(std::strerror(errno));
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { ::close(number_); }
  int number() const { return number_; }

 private:
  const int number_;
};

struct SpawnActions {
  posix_spawn_file_actions_t actions;
  SpawnActions() { ::posix_spawn_file_actions_init(&actions); }
  SpawnActions(const SpawnActions&) = delete;
  SpawnActions& operator=(const SpawnActions&) = delete;
  ~SpawnActions() { ::posix_spawn_file_actions_destroy(&actions); }
};

// Waits for it; true if all went well.
bool runDecodingProcess(const Descriptor& file, const Descriptor& samples, std::size_t bytes) {
  SpawnActions streams;
  ::posix_spawn_file_actions_adddup2(&streams.actions, file.number(), STDIN_FILENO);
  ::posix_spawn_file_actions_adddup2(&streams.actions, samples.number(), STDOUT_FILENO);
  ::posix_spawn_file_actions_addopen(&streams.actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  std::string name = "lumora", word = kWord, count = std::to_string(bytes);
  char* const arguments[] = {name.data(), word.data(), count.data(), nullptr};
  // Who starts the tool may have arranged that nobody hears of children's ends.
  std::signal(SIGCHLD, SIG_DFL);
  pid_t child = 0;
  const int error =
      ::posix_spawn(&child, "/proc/self/exe", &streams.actions, nullptr, arguments, environ);
  if (error != 0) throw PictureError(text("cannot be decoded: ", std::strerror(error)));
  int status = 0;
  while (::waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) throw PictureError(text("cannot be decoded: ", std::strerror(errno)));
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == kExitDone;
}

std::string reasonIn(const Descriptor& samples) {
  char reason[kLongestReason];
  const ssize_t count = ::pread(samples.number(), reason, sizeof reason, 0);
  const bool isReason = count > 0 && ::lseek(samples.number(), 0, SEEK_END) == count;
  return isReason ? std::string(reason, static_cast<std::size_t>(count))
                  : "takes more memory or time than its header gives reason for";
}

void* addField(VipsImage*, const char* name, GValue* value, void* to) {
  vips_image_set(static_cast<VipsImage*>(to), name, value);
  return nullptr;
}

// Takes the descriptor's bytes into its address space, for as long as it lives.
VImage mapSamples(const Descriptor& samples, std::size_t bytes, const VImage& header) {
  struct Mapping {
    void* start;
    std::size_t bytes;
  };
  void* const start =
      ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE, samples.number(), 0);
  if (start == MAP_FAILED) throw PictureError(std::strerror(errno));
  const VImage mapped = VImage::new_from_memory(start, bytes, header.width(), header.height(),
                                                header.bands(), header.format());
  g_object_set_data_full(G_OBJECT(mapped.get_image()), "samples", new Mapping{start, bytes},
                         [](void* data) {
                           const auto* const mapping = static_cast<Mapping*>(data);
                           ::munmap(mapping->start, mapping->bytes);
                           delete mapping;
                         });
  VImage image = mapped.copy(VImage::option()
                                 ->set("interpretation", header.interpretation())
                                 ->set("xres", header.xres())
                                 ->set("yres", header.yres()));
  vips_image_map(header.get_image(), addField, image.get_image());
  return image;
}

std::uint64_t dataInUse() {
  std::uint64_t pages[6] = {};
  std::ifstream statistics("/proc/self/statm");
  for (std::uint64_t& count : pages) statistics >> count;
  return pages[5] * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
}

void limit(__rlimit_resource resource, std::uint64_t most) {
  const rlimit both{most, most};
  ::setrlimit(resource, &both);
}

void limitTo(std::uint64_t samples) {
  limit(RLIMIT_CORE, 0);
  limit(RLIMIT_FSIZE, std::max<std::uint64_t>(samples, kLongestReason));
  const std::uint64_t seconds = kSeconds + samples / kSamplesPerSecond;
  limit(RLIMIT_CPU, seconds);
  ::alarm(static_cast<unsigned>(kWaitingFactor * seconds));
  if (kLimitsMemory) {
    limit(RLIMIT_DATA, dataInUse() + kMemory + kMemoryPerSample * samples +
                           kMemoryOfThread * std::thread::hardware_concurrency());
  }
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
}

int explain(const std::string& reason) {
  const bool isWritten = ::ftruncate(STDOUT_FILENO, 0) == 0 &&
                         ::pwrite(STDOUT_FILENO, reason.data(), reason.size(), 0) > 0;
  return isWritten ? kExitPictureFailed : kExitUsage;
}

}  // namespace

VImage decodeApart(const VImage& header, const PictureFile& file) {
  const std::size_t bytes = VIPS_IMAGE_SIZEOF_IMAGE(header.get_image());
  const Descriptor encoded(file.duplicate());
  const Descriptor samples(::memfd_create("samples", MFD_CLOEXEC));
  const bool isDecoded = runDecodingProcess(encoded, samples, bytes);
  if (isDecoded && ::lseek(samples.number(), 0, SEEK_END) == static_cast<off_t>(bytes)) {
    return mapSamples(samples, bytes, header);
  }
  throw PictureError(text("cannot be read, it seems damaged: ", reasonIn(samples)));
}

bool isDecodingProcess(int argc, char** argv) {
  return argc == 3 && std::strcmp(argv[1], kWord) == 0;
}

int decodeStandardInput(int, char** argv) {
  startImageLibrary(argv[0], false);
  limitTo(std::strtoull(argv[2], nullptr, 10));
  ::lseek(STDIN_FILENO, 0, SEEK_SET);
  try {
    const PictureFile file("-");
    file.image().rawsave_fd(STDOUT_FILENO);
    return kExitDone;
  } catch (const vips::VError&) {
    return explain(takeImageComplaint().substr(0, kLongestReason));
  } catch (const PictureError& error) {
    return explain(error.what());
  }
}

}  // namespace lumora::tool
