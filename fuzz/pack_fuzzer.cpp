// Any texture pack and document: an initialisation accepts or refuses them for the right reason,
// and what it accepts never makes a picture call fail or touch what is not its own.
#include <cstring>

#include "fuzz_check.h"
#include "host_values.h"
#include "pipeline/mode_table.h"
#include "resources/pack_directory.h"
#include "resources/texture_pack.h"
#include "support/captured_log.h"
#include "support/mode_calls.h"
#include "workers.h"

namespace lumora::fuzz {
namespace {

constexpr std::size_t kPackSize = kPackBytes;

// The two files; the pack is put right again after every input.
const test::PackDirectory directory;

// A pack of another length, which is refused before a byte of it is read: a hole has any length.
const test::ResourceDirectory hole;

// Of the parts that an input can change: the header, a stretch of texture bytes and the length.
struct Change {
  test::Bytes header;
  test::Bytes texels;
  std::size_t offset = 0;
  std::size_t size = kPackSize;

  explicit Change(FuzzedDataProvider& in) {
    header.assign(directory.packBytes().begin(), directory.packBytes().begin() + kPackHeaderBytes);
    if (in.ConsumeBool()) {
      header[in.ConsumeIntegralInRange<std::size_t>(0, 15)] = in.ConsumeIntegral<std::uint8_t>();
    }
    // Most of what is read byte by byte lies at the end: the two small textures.
    const std::size_t first = in.ConsumeBool() ? kPackSize - 1500 : kPackHeaderBytes;
    offset = in.ConsumeIntegralInRange(first, kPackSize - 1);
    texels = in.ConsumeBytes<std::uint8_t>(in.ConsumeIntegralInRange<std::size_t>(0, 300));
    texels.resize(std::min(texels.size(), kPackSize - offset));
    if (oneIn(in, 8)) size = in.ConsumeIntegralInRange<std::size_t>(0, kPackSize + 1000);
  }
  bool hasPackSize() const { return size == kPackSize; }
  bool isAcceptable() const {
    return hasPackSize() && findPackFault(header.data()) == PackFault::kNone;
  }
  std::string apply() const {
    if (!hasPackSize()) {
      std::ofstream(hole.pack(), std::ios::app);
      std::filesystem::resize_file(hole.pack(), size);
      return hole.path();
    }
    directory.overwritePack(0, header);
    directory.overwritePack(offset, texels);
    return directory.path();
  }
  void undo() const {
    if (!hasPackSize()) return;
    directory.restorePack(0, header.size());
    directory.restorePack(offset, texels.size());
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
      handleMode % 256 != 0 && usesTexture(call.mode) && handleMode % 256 != call.mode;
  FUZZ_CHECK(status == (refused ? LUMORA_BAD_ARGUMENT : LUMORA_OK));
  FUZZ_CHECK(picture.keepsBorders(before, test::keepsAlpha(call.mode)));
}

void initialiseAndCall(FuzzedDataProvider& in, const Change& change, const std::string& path) {
  test::CapturedLog log;
  test::TestAllocator allocator;
  allocator.setMisalignment(1);
  static constexpr std::uint32_t kModes[] = {0, 5, 6, 7, 8, 13, 14, 15, 16, 17, 256, 264};
  FilterInitParamApp param{};
  param.eMode = in.PickValueInArray(kModes);
  param.eDirection = in.ConsumeIntegralInRange(0u, 3u);
  // Without a size all textures are copied, which takes three times as long as the rest.
  if (!rarely(in, 16)) {
    param.width = in.ConsumeIntegralInRange(88u, 120u);
    param.height = in.ConsumeIntegralInRange(88u, 100u);
  }
  param.pcResourceDir = path.c_str();
  param.pstAllocator = allocator.record();

  FilterHandle* handle = nullptr;
  const std::uint32_t status = filterInit_APP(&handle, &param);
  FUZZ_CHECK(status == (change.isAcceptable() ? LUMORA_OK : LUMORA_BAD_RESOURCE));
  FUZZ_CHECK((status == LUMORA_OK) == (handle != nullptr));
  FUZZ_CHECK((status == LUMORA_OK) == log.errors().empty());
  if (handle != nullptr) callOnce(in, handle, param.eMode);
  filterDestroy(&handle);
  FUZZ_CHECK(allocator.balanced());
  log.clear();  // what one input leaves behind for the next looks like a leak to the fuzzer
}

}  // namespace
}  // namespace lumora::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace lumora::fuzz;
  FuzzedDataProvider in(data, size);
  const Workers workers(rarely(in, 32));
  const Change change(in);
  const std::string path = change.apply();
  directory.write(directory.tuning(), in.ConsumeRandomLengthString());
  initialiseAndCall(in, change, path);
  change.undo();
  return 0;
}
