// Any sequence of the six functions with any records: no call touches what is not its own, every
// failure has its status and a message, memory comes back, and a call that succeeds gives the same
// bytes on another vector level and with another count of threads.
#include <algorithm>
#include <array>

#include "fuzz_check.h"
#include "host_picture.h"
#include "resources/pack_directory.h"
#include "support/captured_log.h"
#include "support/mode_calls.h"
#include "support/thread_faults.h"
#include "workers.h"

namespace lumora::fuzz {
namespace {

constexpr std::uint32_t kLargestRequest = 16'000'000;
// Preparing larger textures only costs time: all of a handle's, or the one of a handle for one
// mode.
constexpr std::uint64_t kMostTexels = 20'000;
constexpr std::uint64_t kMostTexelsOfOne = 400'000;
constexpr int kMostCalls = 8;

const test::PackDirectory resources;

// One input's host: a few handle variables, one allocator.
class Host {
 public:
  explicit Host(FuzzedDataProvider& in) : in_(in) {
    allocator_.setLargestRequest(kLargestRequest);
    // One byte after a boundary a block ends where its used part does.
    static constexpr std::uint32_t kMisalignments[] = {1, 1, 1, 0, 4, 8, 15};
    allocator_.setMisalignment(in.PickValueInArray(kMisalignments));
  }
  ~Host() {
    for (FilterHandle*& handle : handles_) filterDestroy(&handle);
    FUZZ_CHECK(allocator_.balanced());
  }

  void step() {
    test::CapturedLog log;
    log_ = &log;
    const test::ThreadFaults threads(oneIn(in_, 4) ? in_.ConsumeIntegral<std::uint64_t>()
                                                   : std::uint64_t{0});
    allocator_.failAt(oneIn(in_, 4) ? in_.ConsumeIntegralInRange(1, 4) : 0);
    switch (in_.ConsumeIntegralInRange(0, 7)) {
      case 0: initialise(); break;
      case 1: initialiseApp(); break;
      case 2: filterDestroy(in_.ConsumeBool() ? &handle() : nullptr); break;
      case 3: FUZZ_CHECK(getFilterVersion() == 81010); break;
      default: process(); break;
    }
    allocator_.failAt(0);
    log.clear();  // what one input leaves behind for the next looks like a leak to the fuzzer
  }

 private:
  FilterHandle*& handle() { return handles_[in_.ConsumeIntegralInRange<std::size_t>(0, 1)]; }

  template <class Param>
  void fill(Param& param) {
    static constexpr std::uint32_t kModes[] = {0, 0, 5, 6, 7, 8, 13, 14, 15, 16, 17};
    param.eMode = in_.ConsumeBool() ? in_.PickValueInArray(kModes) : anyNumber<std::uint32_t>(in_);
    param.eDirection = mostlyIn<std::uint32_t>(in_, 0, 3);
    param.width = mostlyIn<std::uint32_t>(in_, 88, 130);
    param.height = mostlyIn<std::uint32_t>(in_, 88, 110);
    const std::uint64_t texels = std::uint64_t{param.width} * param.height;
    if (texels > (param.eMode % 256 == 0 ? kMostTexels : kMostTexelsOfOne)) {
      param.width = param.height = 20000;  // more bytes than a request can have
    }
    if (rarely(in_, 32)) param.width = param.height = 0;
    static FilterAllocator half{};
    half = *allocator_.record();
    if (in_.ConsumeBool()) {
      half.release = nullptr;
    } else {
      half.allocate = nullptr;
    }
    switch (in_.ConsumeIntegralInRange(0, 9)) {
      case 0: param.pstAllocator = &half; break;
      case 1: param.pstAllocator = nullptr; break;
      default: param.pstAllocator = allocator_.record(); break;
    }
  }

  // Runs one of the two initialisations on a handle variable that holds no handle.
  template <class Param, class Function>
  void initialiseWith(Param& param, Function function) {
    fill(param);
    FilterHandle*& variable = handle();
    filterDestroy(&variable);
    const bool nullVariable = oneIn(in_, 32);
    const bool nullRecord = oneIn(in_, 32);
    const std::uint32_t status =
        function(nullVariable ? nullptr : &variable, nullRecord ? nullptr : &param);
    checkStatus(status);
    FUZZ_CHECK(status != 0 || variable != nullptr);
  }

  void initialise() {
    FilterInitParam param{};
    initialiseWith(param, filterInit);
  }

  void initialiseApp() {
    FilterInitParamApp param{};
    std::string directory = resources.path();
    switch (in_.ConsumeIntegralInRange(0, 15)) {
      case 0: directory = in_.ConsumeRandomLengthString(300); break;
      case 1: directory.insert(0, in_.ConsumeIntegralInRange<std::size_t>(0, 300), '/'); break;
      default: break;
    }
    param.pcResourceDir = oneIn(in_, 32) ? nullptr : directory.c_str();
    initialiseWith(param, filterInit_APP);
  }

  // A mask whose bytes all exist, or one that must be refused before it is read.
  void fillMask(FixColorParam& param) {
    param.maskWidth = mostlyIn<std::int32_t>(in_, 1, 50);
    param.maskHeight = mostlyIn<std::int32_t>(in_, 1, 50);
    param.maskStride = mostlyIn<std::int32_t>(in_, std::min(param.maskWidth, 50), 60);
    const bool valid =
        param.maskWidth > 0 && param.maskHeight > 0 && param.maskStride >= param.maskWidth;
    const std::int64_t bytes =
        std::int64_t{param.maskStride} * (std::int64_t{param.maskHeight} - 1) + param.maskWidth;
    if (valid && bytes > 100'000) return;
    mask_.reset();
    param.mask = inaccessibleAddress();
    if (!valid) return;
    mask_ = std::make_unique<test::GuardedBuffer>(static_cast<std::size_t>(bytes));
    std::fill_n(mask_->data(), mask_->size(), in_.ConsumeIntegral<std::uint8_t>());
    param.mask = mask_->data();
  }

  FilterAlbumParam anyParam() {
    FilterAlbumParam param{};
    FilterProcessParam& p = param.stProcess;
    p.eMode = mostlyIn<std::uint32_t>(in_, 1, 20);
    p.eDirection = mostlyIn<std::uint32_t>(in_, 0, 3);
    p.effectRatio = mostlyIn<std::int32_t>(in_, 0, 32);
    p.singleThread = in_.ConsumeBool() ? 1 : 0;
    const auto numbers = [this](auto&... fields) {
      ((fields = mostlyIn<std::int32_t>(in_, 0, 150)), ...);
    };
    switch (p.eMode) {
      case 17: numbers(p.rectX, p.rectY, p.rectWidth, p.rectHeight, p.mosaicSize); break;
      case 18: {
        FixColorParam& f = param.stFixColor;
        for (std::uint8_t* byte : {&f.red, &f.green, &f.blue, &f.tolerance}) {
          *byte = in_.ConsumeIntegral<std::uint8_t>();
        }
        if (in_.ConsumeBool()) fillMask(f);
        break;
      }
      case 19: {
        BlurParam& b = param.stBlur;
        numbers(b.centreX, b.centreY, b.innerRadius, b.outerRadius);
        break;
      }
      case 20: {
        TiltShiftParam& t = param.stTiltShift;
        numbers(t.x1, t.y1, t.x2, t.y2);
        t.core = mostlyIn<std::int32_t>(in_, 0, 32);
        break;
      }
      default: break;
    }
    return param;
  }

  static std::uint32_t call(FilterHandle* handle, const FilterImage* image, FilterAlbumParam* param,
                            bool album) {
    if (album) return filterProcess_for_album(handle, image, param);
    // In memory of its own, so that nobody reads on into the album's part.
    if (param == nullptr) return filterProcess(handle, image, nullptr);
    const auto process = std::make_unique<FilterProcessParam>(param->stProcess);
    return filterProcess(handle, image, process.get());
  }

  void process() {
    FilterHandle* const used = handle();
    HostPicture picture(in_);
    const FilterAlbumParam param = anyParam();
    const bool album = in_.ConsumeBool();
    const bool nullImage = oneIn(in_, 32);
    const bool nullParam = oneIn(in_, 32);
    const test::Bytes before = picture.bytes();

    FilterAlbumParam rewritten = param;
    const std::uint32_t status = call(used, nullImage ? nullptr : &picture.record(),
                                      nullParam ? nullptr : &rewritten, album);
    checkStatus(status);
    FUZZ_CHECK(picture.keepsBorders(before, test::keepsAlpha(param.stProcess.eMode)));
    if (status == LUMORA_BAD_ARGUMENT || status == LUMORA_BAD_STATE) {
      FUZZ_CHECK(picture.bytes() == before);
    }
    if (status == LUMORA_OK && log_->errors().empty()) repeat(used, picture, before, param, album);
  }

  // The same call on the lowest level, and on as many threads as the other one did not use.
  void repeat(FilterHandle* used, HostPicture& picture, const test::Bytes& before,
              FilterAlbumParam param, bool album) {
    const std::uint32_t mode = param.stProcess.eMode;
    if (mode == LUMORA_MODE_LAODIANYING) return;  // other marks every time
    const test::Bytes result = picture.bytes();
    picture.assign(before);
    allocator_.failAt(0);
    const test::ThreadFaults none(0);
    const test::ForcedLevel lowest(0);
    if (mode != LUMORA_MODE_COLOUR_FIX) {
      param.stProcess.singleThread = 1 - param.stProcess.singleThread;
    }
    FUZZ_CHECK(call(used, &picture.record(), &param, album) == LUMORA_OK);
    FUZZ_CHECK(picture.bytes() == result);
  }

  void checkStatus(std::uint32_t status) const {
    FUZZ_CHECK(status == LUMORA_OK || status == LUMORA_BAD_ARGUMENT || status == LUMORA_BAD_STATE ||
               status == LUMORA_BAD_RESOURCE || status == LUMORA_THREAD_FAILED);
    FUZZ_CHECK(status == LUMORA_OK || !log_->errors().empty());
  }

  FuzzedDataProvider& in_;
  test::TestAllocator allocator_;
  const test::CapturedLog* log_ = nullptr;
  std::array<FilterHandle*, 2> handles_{};
  std::unique_ptr<test::GuardedBuffer> mask_;
};

}  // namespace
}  // namespace lumora::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider in(data, size);
  const lumora::fuzz::Workers workers(lumora::fuzz::rarely(in, 32));
  lumora::fuzz::Host host(in);
  for (int i = 0; i < lumora::fuzz::kMostCalls && in.remaining_bytes() > 0; ++i) host.step();
  return 0;
}
