#include "host.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <stdexcept>
#include <tuple>
#include <vector>

#include "resources/resource_files.h"
#include "resources/texture_pack.h"

namespace {
char logLine[256];
}

// Replaces the library's weak one: why a call failed belongs into the report. The first message
// since the last clearLog tells it best.
extern "C" int __android_log_print(int, const char*, const char* format, ...) {
  if (logLine[0] != '\0') return 0;
  std::va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(logLine, sizeof logLine, format, arguments);
  va_end(arguments);
  return length;
}

namespace lumora::bench {
namespace {

struct ReusedBlock {
  Buffer data;
  std::uint32_t bytes;
  bool isFree;
};
std::vector<ReusedBlock> reusedBlocks;
std::int64_t requestCount = 0;

// The smallest free block that is large enough, else a new one. Written to once, so that the pages
// of a new block are there before anything is timed.
void* allocateReused(std::uint32_t size, const char*, std::uint32_t) {
  ++requestCount;
  ReusedBlock* best = nullptr;
  for (ReusedBlock& block : reusedBlocks) {
    if (block.isFree && block.bytes >= size && (best == nullptr || block.bytes < best->bytes)) {
      best = &block;
    }
  }
  if (best == nullptr) {
    reusedBlocks.push_back({makeBuffer(size), size, true});
    best = &reusedBlocks.back();
    std::memset(best->data.get(), 0, size);
  }
  best->isFree = false;
  return best->data.get();
}

void releaseReused(void* address, const char*, std::uint32_t) {
  for (ReusedBlock& block : reusedBlocks) {
    if (block.data.get() == address) block.isFree = true;
  }
}

// A directory with a pack of noise, removed with the process.
class NoisePack {
 public:
  NoisePack() {
    std::random_device seed;
    directory_ =
        std::filesystem::temp_directory_path() / ("lumora-bench-" + std::to_string(seed()));
    std::filesystem::create_directory(directory_);
    std::vector<std::uint8_t> pack(kPackBytes);
    std::minstd_rand noise;
    for (std::uint8_t& byte : pack) byte = static_cast<std::uint8_t>(noise() >> 8);
    std::memcpy(pack.data(), kPackSizeBytes, sizeof kPackSizeBytes);
    std::memcpy(pack.data() + kPackMarkOffset, kPackMark, sizeof kPackMark);
    std::ofstream(directory_ / kPackName, std::ios::binary)
        .write(reinterpret_cast<const char*>(pack.data()), kPackBytes);
  }
  ~NoisePack() {
    std::error_code ignored;
    std::filesystem::remove_all(directory_, ignored);
  }
  std::string directory() const { return directory_.string() + "/"; }

 private:
  std::filesystem::path directory_;
};

std::string givenDirectory;

bool holdsPack(const std::string& directory) {
  std::error_code error;
  return std::filesystem::file_size(directory + kPackName, error) == kPackBytes && !error;
}

std::uint32_t initialise(std::uint32_t mode, Size size, Memory memory, FilterHandle** handle) {
  clearLog();
  FilterInitParamApp param{};
  param.eMode = mode;
  param.width = static_cast<std::uint32_t>(size.width);
  param.height = static_cast<std::uint32_t>(size.height);
  param.pcResourceDir = resourceDirectory().c_str();
  param.pstAllocator = allocatorOf(memory);
  return filterInit_APP(handle, &param);
}

FilterHandle* keptHandle(Size size, Memory memory) {
  static std::map<std::tuple<int, int, Memory>, FilterHandle*> handles;
  FilterHandle*& handle = handles[{size.width, size.height, memory}];
  if (handle == nullptr && initialise(LUMORA_MODE_ANY, size, memory, &handle) != LUMORA_OK) {
    filterDestroy(&handle);
    throw std::runtime_error("initialisation refused: " + firstLogLine());
  }
  return handle;
}

}  // namespace

FilterAllocator* allocatorOf(Memory memory) {
  static FilterAllocator reusing{allocateReused, releaseReused};
  return memory == Memory::kReusing ? &reusing : nullptr;
}

std::int64_t reusedRequests() { return requestCount; }

void setResourceDirectory(std::string directory) {
  if (!directory.empty() && directory.back() != '/') directory += '/';
  givenDirectory = std::move(directory);
}

const std::string& resourceDirectory() {
  if (!holdsPack(givenDirectory)) {
    static const NoisePack noise;
    givenDirectory = noise.directory();
  }
  return givenDirectory;
}

FilterHandle* preparedHandle(Size size, Memory memory) { return keptHandle(size, memory); }

FilterHandle* unsizedHandle(Memory memory) { return keptHandle({0, 0}, memory); }

std::uint32_t initialiseOnce(std::uint32_t mode, Size size, Memory memory) {
  FilterHandle* handle = nullptr;
  const std::uint32_t status = initialise(mode, size, memory, &handle);
  filterDestroy(&handle);
  return status;
}

void clearLog() { logLine[0] = '\0'; }

std::string firstLogLine() {
  std::string line(logLine);
  while (!line.empty() && (line.back() == '\n' || line.back() == ' ')) line.pop_back();
  for (char& c : line) {
    if (c == '\n') c = ' ';
  }
  return line;
}

}  // namespace lumora::bench
