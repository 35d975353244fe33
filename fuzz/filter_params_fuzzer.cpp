// Any bytes as filter.xml: flags are 0 or 1, and nothing is stored beside the blocks.
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>

#include "config/filter_params.h"
#include "fuzz_check.h"

namespace lumora {
namespace {

constexpr std::size_t kShortestDocument = 200;

// A file without a disk.
class MemoryFile {
 public:
  MemoryFile() : descriptor_(memfd_create("filter.xml", 0)) {
    FUZZ_CHECK(descriptor_ >= 0);
    path_ = "/proc/self/fd/" + std::to_string(descriptor_);
  }
  const char* path() const { return path_.c_str(); }
  void rewrite(const std::string& text) const {
    const auto size = static_cast<ssize_t>(text.size());
    FUZZ_CHECK(ftruncate(descriptor_, 0) == 0);
    FUZZ_CHECK(pwrite(descriptor_, text.data(), text.size(), 0) == size);
  }

 private:
  int descriptor_;
  std::string path_;
};

bool isUntouched(const std::uint8_t* begin, const std::uint8_t* end) {
  return std::all_of(begin, end, [](std::uint8_t byte) { return byte == 1; });
}

void checkCurves(const TuningBlock& block, const std::uint8_t* curves) {
  for (int i = 0; i < block.curveCount; ++i) {
    ToneCurve curve;
    std::memcpy(curve.bytes, curves + i * sizeof curve, sizeof curve);
    const ToneCurve again = ToneCurve::of(curve.knots());
    FUZZ_CHECK(std::memcmp(curve.bytes, again.bytes, sizeof curve) == 0);
  }
}

void checkBlock(const TuningBlock& block, const BlockReport& report, const FilterParams& params) {
  const std::uint8_t* const curves = params.bytes + block.curveOffset();
  const std::uint8_t* const end = params.bytes + block.endOffset();
  const int flag = params.bytes[block.offset];
  FUZZ_CHECK(flag == (report.state == BlockState::kInUse ? 0 : 1));
  const bool stored =
      report.state == BlockState::kInUse || report.state == BlockState::kScalarOutOfRange;
  FUZZ_CHECK(stored || isUntouched(curves, end));
  if (stored) checkCurves(block, curves);
}

}  // namespace
}  // namespace lumora

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace lumora;
  static const MemoryFile file;
  std::string text(reinterpret_cast<const char*>(data), size);
  // Shorter files are never parsed, which would waste most inputs.
  if (text.size() < kShortestDocument) text.append(kShortestDocument - text.size(), ' ');
  file.rewrite(text);

  FilterParams params;
  TuningReport report;
  FUZZ_CHECK(readFilterParams(params.bytes, file.path(), report) == Status::kOk);
  for (int i = 0; i < kTuningBlockCount; ++i) {
    checkBlock(kTuningBlocks[i], report.blocks[i], params);
  }
  const TuningBlock& last = kTuningBlocks[kTuningBlockCount - 1];
  FUZZ_CHECK(isUntouched(params.bytes + last.endOffset(), params.bytes + sizeof params.bytes));
  return 0;
}
