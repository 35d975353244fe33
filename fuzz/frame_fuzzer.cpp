// `lumora frame` with any options and any bytes as frames: it writes all frames or, with an error
// that it explains, nothing.
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "commands.h"
#include "errors.h"
#include "fuzz_check.h"
#include "host_values.h"
#include "resources/pack_directory.h"
#include "workers.h"

namespace lumora::fuzz {
namespace {

constexpr std::int64_t kMostPixels = 100'000;
constexpr std::int64_t kMostBytes = 1'000'000;

// Holds the resource files, the frames and what becomes of them.
const test::PackDirectory folder;
const std::string input = folder.path() + "in";
const std::string output = folder.path() + "out";

struct Size {
  std::int64_t width, height, stride;
};

// Sizes that only take time and memory are replaced by one that is refused.
Size anySize(FuzzedDataProvider& in) {
  Size size = {mostlyIn<std::int32_t>(in, 88, 120), mostlyIn<std::int32_t>(in, 88, 100),
               mostlyIn<std::int32_t>(in, 88, 600)};
  if (size.width * size.height > kMostPixels) size.width = 7;
  if (size.stride * size.height > kMostBytes) size.stride = 1;
  return size;
}

std::string list(FuzzedDataProvider& in, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) {
    text += (i > 0 ? "," : "") + std::to_string(mostlyIn<std::int32_t>(in, 0, 100));
  }
  return text;
}

// An option's value, or text in its place. Nothing here names a file.
std::string value(FuzzedDataProvider& in, const std::string& sensible, std::size_t longest = 12) {
  return oneIn(in, 8) ? in.ConsumeRandomLengthString(longest) : sensible;
}

std::vector<std::string> anyArguments(FuzzedDataProvider& in) {
  static constexpr const char* kLooks[] = {"heibai", "5",  "xpro2", "11",         "mosaic",
                                           "blur",   "20", "yun",   "colour-fix", "lianghong"};
  static constexpr const char* kFormats[] = {"nv21", "nv12", "rgba"};
  const Size size = anySize(in);
  std::vector<std::string> arguments = {
      "frame",
      "--look",
      value(in, in.PickValueInArray(kLooks)),
      "--format",
      value(in, in.PickValueInArray(kFormats)),
      "--size",
      std::to_string(size.width) + "x" + std::to_string(size.height),
      "--resources",
      folder.path()};
  const auto add = [&](const char* name, const std::string& sensible, std::size_t longest = 12) {
    arguments.insert(arguments.end(), {name, value(in, sensible, longest)});
  };
  while (in.ConsumeBool() && arguments.size() < 30) {
    switch (in.ConsumeIntegralInRange(0, 10)) {
      case 0: add("--stride", std::to_string(size.stride), 4); break;  // frames of megabytes
      case 1: add("--strength", list(in, 1)); break;
      case 2: add("--direction", list(in, 1)); break;
      case 3: arguments.emplace_back("--single-thread"); break;
      case 4: add("--rect", list(in, 4)); break;
      case 5: add("--block", list(in, 1)); break;
      case 6: add("--centre", list(in, 2)); break;
      case 7: add("--radius", list(in, 2)); break;
      case 8: add("--band", list(in, 4)); break;
      case 9: add("--core", list(in, 1)); break;
      default: add("--colour", "#a0b0c0"); break;
    }
  }
  arguments.insert(arguments.end(), {input, output});
  return arguments;
}

std::int64_t y4mFrameBytes(const std::vector<std::string>& arguments) {
  const std::string& size = arguments[6];
  const auto side = [](const std::string& digits) {
    return std::clamp<std::int64_t>(std::stoll(digits), 0, LUMORA_LONGEST_SIDE);
  };
  const std::int64_t pixels = side(size) * side(size.substr(size.find('x') + 1));
  return std::min(pixels * 3 / 2, kMostBytes);
}

// Lets a stream tell the format and the size that stand in the arguments; its first lines.
std::string takeY4mHeader(std::vector<std::string>& arguments, FuzzedDataProvider& in) {
  const std::string size = arguments[6];
  arguments.erase(arguments.begin() + 3, arguments.begin() + 7);
  const std::size_t x = size.find('x');
  return "YUV4MPEG2 W" + size.substr(0, x) + " H" + size.substr(x + 1) +
         value(in, " C420jpeg", 40) + "\nFRAME" + value(in, "\n", 20);
}

// The exit code, or -1 for an error that was explained.
int run(std::vector<std::string>& arguments) {
  std::vector<char*> argv;
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  try {
    return tool::frameCommand(static_cast<int>(arguments.size()), argv.data());
  } catch (const tool::UsageError&) {
    return -1;
  } catch (const tool::PictureError&) {
    return -1;
  }
}

}  // namespace
}  // namespace lumora::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace lumora::fuzz;
  namespace fs = std::filesystem;
  FuzzedDataProvider in(data, size);
  const Workers workers(rarely(in, 32));
  std::vector<std::string> arguments = anyArguments(in);
  const std::int64_t oneFrame = y4mFrameBytes(arguments);
  const std::string header = oneIn(in, 4) ? takeY4mHeader(arguments, in) : "";
  const bool isWhole = !header.empty() && !oneIn(in, 4);
  // Few bytes make many: the rest of the input, and zeros behind it.
  const auto frames = isWhole ? static_cast<std::size_t>(oneFrame)
                              : in.ConsumeIntegralInRange<std::size_t>(0, 60'000);
  std::vector<std::uint8_t> bytes = in.ConsumeRemainingBytes<std::uint8_t>();
  bytes.resize(frames);
  bytes.insert(bytes.begin(), header.begin(), header.end());
  lumora::test::ResourceDirectory::write(input, bytes);
  fs::remove(output);

  // The command sets standard output aside, once per process in its ordinary life.
  const int firstFree = dup(0);
  const int code = run(arguments);
  close_range(static_cast<unsigned>(firstFree), ~0u, 0);
  FUZZ_CHECK(code == -1 || code == 0);
  FUZZ_CHECK(fs::exists(output) == (code == 0));
  FUZZ_CHECK(code != 0 || fs::file_size(output) == bytes.size());
  return 0;
}
