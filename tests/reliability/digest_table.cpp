#include "reliability/tables.h"

#include <cstdio>
#include <map>
#include <memory>

#include "looks/texture/film_ageing.h"
#include "support/mode_calls.h"

namespace lumora::test {
namespace {

// Odd sides are made even for NV pictures. The last one is large enough for the recursive Gaussian.
constexpr PixelSize kSizes[] = {{101, 91}, {88, 88}, {323, 261}};
// One on either side of full strength come first: those are the reduced columns of the first size.
constexpr int kStrengths[] = {7, 21, 16, 0, 32};
constexpr int kStrengthCount = std::size(kStrengths);

std::string digestOf(const TestPicture& picture) {
  std::uint32_t hash = 2166136261u;  // FNV-1a
  for (std::size_t i = 0; i < picture.bytes(); ++i) {
    hash = (hash ^ picture.data()[i]) * 16777619u;
  }
  char text[9];
  std::snprintf(text, sizeof text, "%08x", hash);
  return text;
}

// Handles by what they are made for; the film look's marks are restored before every call.
class Handles {
 public:
  explicit Handles(const std::string& resourceDir) : resourceDir_(resourceDir) {}
  ~Handles() {
    for (auto& [size, handle] : handles_) filterDestroy(&handle.handle);
  }

  FilterHandle* fresh(TexturePath path, PixelSize picture) {
    const bool unsized = path == TexturePath::kUnsized;
    const PixelSize size = unsized ? PixelSize{} : handleLayout(path, picture).textureSize;
    Entry& entry = handles_[{size.width, size.height}];
    if (entry.handle == nullptr) entry = make(size);
    entry.marks->restore();
    return entry.handle;
  }

 private:
  struct Entry {
    FilterHandle* handle = nullptr;
    std::unique_ptr<SavedMarks> marks;
  };

  Entry make(PixelSize size) const {
    FilterInitParamApp param{};
    param.eDirection = 1;
    param.width = static_cast<std::uint32_t>(size.width);
    param.height = static_cast<std::uint32_t>(size.height);
    param.pcResourceDir = resourceDir_.c_str();
    Entry entry;
    if (filterInit_APP(&entry.handle, &param) != LUMORA_OK) std::abort();
    entry.marks = std::make_unique<SavedMarks>(FilterHandleView(entry.handle));
    return entry;
  }

  std::string resourceDir_;
  std::map<std::pair<int, int>, Entry> handles_;
};

std::string digestOfCall(Handles& handles, ModeCall call, int column) {
  PixelSize size = kSizes[column / kStrengthCount];
  if (call.format != PixelFormat::kRgba) size = {size.width & ~1, size.height & ~1};
  call.strength = kStrengths[column % kStrengthCount];
  call.variant = column % 2;
  TestPicture picture(call.format, size.width, size.height, 3);
  const std::uint32_t status = run(call, handles.fresh(call.path, size), picture.image());
  return status == LUMORA_OK ? digestOf(picture) : "status " + std::to_string(status);
}

std::string nameOf(const ModeCall& call) {
  const std::string name = modeName(call) + ' ' + pathName(call.path);
  if (!dependsOnThreads(call.mode)) return name;
  return name + (call.onCaller ? " one-thread" : " four-threads");
}

}  // namespace

std::vector<std::string> digestTable(const std::string& resourceDir, bool onCaller, bool reduced) {
  setFilmSeed(271828);
  Handles handles(resourceDir);
  const int columns = reduced ? 2 : static_cast<int>(std::size(kSizes)) * kStrengthCount;
  std::vector<std::string> table;
  for (ModeCall call : allModeCalls()) {
    for (const TexturePath path : kTexturePaths) {
      if (path != TexturePath::kPrepared && !usesTexturePlanes(call.mode)) continue;
      call.path = path;
      for (const bool caller : {false, true}) {
        if (!dependsOnThreads(call.mode) && caller != onCaller) continue;
        call.onCaller = caller;
        std::string row = nameOf(call) + ':';
        for (int column = 0; column < columns; ++column) {
          row += ' ' + digestOfCall(handles, call, column);
        }
        table.push_back(row);
      }
    }
  }
  setFilmSeed({});
  return table;
}

}  // namespace lumora::test
