// Any bytes as filter.xml: flags are 0 or 1, and nothing is stored beside the blocks.
#include <algorithm>
#include <string>

#include "config/sound_params.h"
#include "fuzz_check.h"
#include "support/resource_directory.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace lumora;
  static const test::ResourceDirectory directory;
  static const std::string path = directory.tuning();
  std::string text(reinterpret_cast<const char*>(data), size);
  // Files of less than 200 bytes are never parsed, which would waste most inputs.
  text.resize(std::max<std::size_t>(size, 200), ' ');
  directory.write(path, text);

  FilterParams params;
  TuningReport report;
  FUZZ_CHECK(readFilterParams(params.bytes, path.c_str(), report) == Status::kOk);
  FUZZ_CHECK(test::areSound(params, report));
  return 0;
}
