// Any texture pack and document: an initialisation accepts or refuses them for the right reason,
// and what it accepts never makes a picture call fail or touch what is not its own.
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <fstream>

#include "fuzz_check.h"
#include "host_values.h"
#include "pipeline/mode_table.h"
#include "support/captured_log.h"
#include "support/mode_calls.h"
#include "support/resource_directory.h"

namespace lumora::fuzz {
namespace {

constexpr std::int64_t kPackSize = 11535852;

// The two files, in a private directory; the pack is put right again after every input.
class Files {
 public:
  Files() : good_(test::noisyPack()) { test::ResourceDirectory::write(directory_.pack(), good_); }

  std::string path() const { return directory_.path(); }
  void overwrite(std::int64_t offset, const void* bytes, std::size_t count) {
    std::fstream file(directory_.pack(), std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(offset);
    file.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(count));
  }
  void resize(std::int64_t bytes) {
    std::filesystem::resize_file(directory_.pack(), static_cast<std::uintmax_t>(bytes));
  }
  void restore(std::int64_t offset, std::size_t count) {
    overwrite(offset, good_.data() + offset, count);
  }
  void writeTuning(const std::string& text) {
    test::ResourceDirectory::write(directory_.tuning(), text);
  }
  const std::vector<std::uint8_t>& good() const { return good_; }

 private:
  std::vector<std::uint8_t> good_;
  test::ResourceDirectory directory_;
};

Files& files() {
  static Files instance;
  return instance;
}

// Of the parts that an input can change: the header, a stretch of texture bytes and the length.
struct Change {
  std::vector<std::uint8_t> header;
  std::int64_t offset = 0;
  std::vector<std::uint8_t> texels;
  std::int64_t size = kPackSize;

  explicit Change(FuzzedDataProvider& in) {
    header.assign(files().good().begin(), files().good().begin() + 16);
    if (in.ConsumeBool()) {
      header[in.ConsumeIntegralInRange<std::size_t>(0, 15)] = in.ConsumeIntegral<std::uint8_t>();
    }
    // Most of what is read byte by byte lies at the end: the two small textures.
    const std::int64_t first = in.ConsumeBool() ? kPackSize - 1500 : 16;
    offset = in.ConsumeIntegralInRange(first, kPackSize - 1);
    texels = in.ConsumeBytes<std::uint8_t>(in.ConsumeIntegralInRange<std::size_t>(0, 300));
    texels.resize(std::min(texels.size(), static_cast<std::size_t>(kPackSize - offset)));
    if (in.ConsumeIntegralInRange(0, 7) == 0) {
      size = kPackSize + in.ConsumeIntegralInRange<std::int64_t>(-kPackSize, 1000);
    }
  }
  bool isAcceptable() const {
    return size == kPackSize && std::memcmp(header.data(), "\x04\x00\x04\x00", 4) == 0 &&
           std::memcmp(header.data() + 10, "\x01\x04\x01\x01\x00\x04", 6) == 0;
  }
  void apply() const {
    files().overwrite(0, header.data(), header.size());
    files().overwrite(offset, texels.data(), texels.size());
    if (size != kPackSize) files().resize(size);
  }
  void undo() const {
    if (size < kPackSize) files().restore(size, static_cast<std::size_t>(kPackSize - size));
    if (size != kPackSize) files().resize(kPackSize);
    files().restore(0, header.size());
    files().restore(offset, texels.size());
  }
};

void callOnce(FuzzedDataProvider& in, FilterHandle* handle, std::uint32_t handleMode) {
  static const std::vector<test::ModeCall> calls = test::allModeCalls();
  test::ModeCall call = calls[in.ConsumeIntegralInRange<std::size_t>(0, calls.size() - 1)];
  call.strength = in.ConsumeIntegralInRange(0, 32);
  call.onCaller = in.ConsumeBool();
  test::TestPicture picture(call.format, 2 * in.ConsumeIntegralInRange(44, 60), 88, 2);
  const auto before = picture.snapshot();
  const std::uint32_t status = test::run(call, handle, picture.image());
  const bool refused =
      handleMode % 256 != 0 && isTextureMode(call.mode) && handleMode % 256 != call.mode;
  FUZZ_CHECK(status == (refused ? LUMORA_BAD_ARGUMENT : LUMORA_OK));
  FUZZ_CHECK(picture.keepsBorders(before, test::keepsAlpha(call.mode)));
}

void initialiseAndCall(FuzzedDataProvider& in, const Change& change) {
  const test::CapturedLog log;
  test::TestAllocator allocator;
  allocator.setMisalignment(1);
  const std::string directory = files().path();
  static constexpr std::uint32_t kModes[] = {0, 5, 6, 7, 8, 13, 14, 15, 16, 17, 256, 264};
  FilterInitParamApp param{};
  param.eMode = in.PickValueInArray(kModes);
  param.eDirection = in.ConsumeIntegralInRange(0u, 3u);
  if (in.ConsumeIntegralInRange(0, 3) != 0) {
    param.width = in.ConsumeIntegralInRange(88u, 120u);
    param.height = in.ConsumeIntegralInRange(88u, 100u);
  }
  param.pcResourceDir = directory.c_str();
  param.pstAllocator = allocator.record();

  FilterHandle* handle = nullptr;
  const std::uint32_t status = filterInit_APP(&handle, &param);
  FUZZ_CHECK(status == (change.isAcceptable() ? LUMORA_OK : LUMORA_BAD_RESOURCE));
  FUZZ_CHECK((status == LUMORA_OK) == (handle != nullptr));
  FUZZ_CHECK((status == LUMORA_OK) == log.errors().empty());
  if (handle != nullptr) callOnce(in, handle, param.eMode);
  filterDestroy(&handle);
  FUZZ_CHECK(allocator.balanced());
}

}  // namespace
}  // namespace lumora::fuzz

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  static_cast<void>(std::freopen("/dev/null", "w", stdout));
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace lumora::fuzz;
  FuzzedDataProvider in(data, size);
  const Change change(in);
  change.apply();
  files().writeTuning(in.ConsumeRandomLengthString());
  initialiseAndCall(in, change);
  change.undo();
  return 0;
}
