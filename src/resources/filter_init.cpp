#include "resources/filter_init.h"

#include <cstring>
#include <string_view>

#include "config/filter_params.h"
#include "platform/host_block.h"
#include "platform/log.h"
#include "platform/regular_file.h"
#include "resources/handle_layout.h"
#include "resources/prepare_textures.h"
#include "resources/resource_files.h"
#include "resources/texture_pack.h"

namespace lumora {
namespace {

constexpr const char* kBuiltInDirectory = "/system/etc/camera/filter/";
constexpr std::size_t kPathBytes = 256;
constexpr std::size_t kLongestDirectory = kPathBytes - 1 - std::string_view(kTuningName).size();
static_assert(kLongestDirectory == LUMORA_LONGEST_RESOURCE_DIR);

// The path of a resource file: the directory's text and the name, glued together.
class ResourcePath {
 public:
  // The directory is at most kLongestDirectory long.
  ResourcePath(const char* directory, const char* name) {
    const std::size_t length = std::strlen(directory);
    std::memcpy(text_, directory, length);
    std::memcpy(text_ + length, name, std::strlen(name) + 1);
  }
  const char* text() const { return text_; }

 private:
  char text_[kPathBytes];
};

// What a handle is made for.
struct HandleRequest {
  std::uint32_t mode;
  PixelSize textureSize;
  SmallTextureSizes smallTextures;
  bool prepared;
  std::uint32_t direction;
  const FilterAllocator& allocator;
  const char* resourceDir;

  const char* directory() const { return resourceDir != nullptr ? resourceDir : kBuiltInDirectory; }
};

Status cannotOpenPack(const HandleRequest& request) {
  return fail(Status::kBadResource, request.resourceDir != nullptr
                                        ? "[%s] \ninput for mixIm.dat is invalid!"
                                        : "[%s] \nmixIm.dat open failed!");
}

// Reads the whole pack into a block of the host's memory.
Status readPack(const HandleRequest& request, HostBlock& pack) {
  if (strnlen(request.directory(), kLongestDirectory + 1) > kLongestDirectory) {
    return cannotOpenPack(request);
  }
  RegularFile file(ResourcePath(request.directory(), kPackName).text());
  if (!file) return cannotOpenPack(request);
  if (!file.seekToEnd()) return fail(Status::kBadResource, "[%s] \n.dat file fseek error!");
  if (file.position() != kPackBytes) {
    return fail(Status::kBadResource, "[%s] \n.dat file size error!");
  }
  if (!file.seekToStart()) return fail(Status::kBadResource, "[%s] \n.dat file fseek error!");

  pack = HostBlock(request.allocator, kPackBytes);
  if (!pack) return fail(Status::kNoMemory, "[%s] \ncan't malloc enough memory!");
  if (file.read(pack.data(), kPackBytes) != kPackBytes) {
    return fail(Status::kBadResource, "[%s] \n.dat file load failed!");
  }
  return Status::kOk;
}

Status checkPackHeader(const std::uint8_t* pack) {
  switch (findPackFault(pack)) {
    case PackFault::kSizeBytes: return fail(Status::kBadResource, "[%s] \n.dat file error!");
    case PackFault::kMark: return fail(Status::kBadResource, "[%s] \n.dat file is wrong!");
    case PackFault::kNone: break;
  }
  return Status::kOk;
}

// Everything of the header but the direction's check. *handle is null when there is no memory.
Status createHandle(const HandleRequest& request, const std::uint8_t* pack, FilterHandle** handle) {
  void* block =
      requestFromHost(request.allocator, handleBytes(request.textureSize, request.smallTextures));
  *handle = static_cast<FilterHandle*>(block);
  if (block == nullptr) return fail(Status::kNoMemory, "[%s] \ncan't malloc enough memory!");

  const FilterHandleView view(*handle);
  std::memset(&view.allocator(), 0, kAllocatorBytes);
  view.allocator() = request.allocator;
  TextureHeader& header = view.header();
  std::memcpy(header.bytes, pack, sizeof header.bytes);
  header.setTextureSize(static_cast<std::uint32_t>(request.textureSize.width),
                        static_cast<std::uint32_t>(request.textureSize.height));
  header.direction() = static_cast<std::uint8_t>(request.direction);
  header.mode() = static_cast<std::uint8_t>(request.mode);
  header.prepared() = request.prepared ? 1 : 0;
  return Status::kOk;
}

Status checkDirection(const HandleRequest& request, TextureHeader& header) {
  if (request.direction < kDirectionCount) return Status::kOk;
  header.direction() = 0;
  return fail(Status::kBadArgument, "[%s] \ndirection error!");
}

Status readTuning(const HandleRequest& request, std::uint8_t* params) {
  const ResourcePath path(request.directory(), kTuningName);
  const Status status = readFilterParams(params, path.text());
  if (status == Status::kOk) return status;
  return fail(status, request.resourceDir != nullptr ? "[%s] \ninput for filter.xml is invalid!"
                                                     : "[%s] \npath for filter.xml is Error!");
}

// Built-in tuning and black textures.
void blank(const FilterHandleView& handle) {
  const std::uint8_t* end = handle.blotch() + handle.smallTextures().bytes();
  std::memset(handle.params(), 1, kFilterParamsBytes);
  std::memset(handle.plane(0), 0, static_cast<std::size_t>(end - handle.plane(0)));
}

// Everything but the texture area. pack receives the checked pack for it.
Status startHandle(const HandleRequest& request, HostBlock& pack, FilterHandle** handle) {
  Status status = readPack(request, pack);
  if (status == Status::kOk) status = checkPackHeader(pack.data());
  if (status == Status::kOk) status = createHandle(request, pack.data(), handle);
  if (status != Status::kOk) return status;

  const FilterHandleView view(*handle);
  status = checkDirection(request, view.header());
  if (status == Status::kOk) status = readTuning(request, view.params());
  // The host now has a handle whatever the status; even if it uses it, no byte is left undefined.
  if (status != Status::kOk) blank(view);
  return status;
}

void copyImages(const std::uint8_t* pack, PackSlot first, PackSlot last, std::uint8_t* plane) {
  const PackImage& end = kPackImages[last];
  const std::uint32_t offset = kPackImages[first].offset;
  std::memcpy(plane, pack + offset, end.offset + end.bytes() - offset);
}

// The pack's slots 0 to 9 and the planes 0 to 9 lie alike, and so do the small textures.
void copyTextures(const std::uint8_t* pack, const FilterHandleView& handle) {
  copyImages(pack, kSlotShade, kSlotFalloff, handle.plane(0));
  copyImages(pack, kSlotGrain, kSlotSpeck, handle.plane(kGrainPlane));
}

}  // namespace

Status FilterInitSized(std::uint32_t eMode, std::uint32_t width, std::uint32_t height,
                       std::uint32_t eDirection, FilterHandle** handle,
                       const FilterAllocator& allocator, const char* resourceDir) {
  const PixelSize size = {static_cast<std::int32_t>(width), static_cast<std::int32_t>(height)};
  const HandleRequest request = {
      eMode, size, smallTextureSizes(width, height), true, eDirection, allocator, resourceDir};
  HostBlock pack;
  const Status status = startHandle(request, pack, handle);
  if (status != Status::kOk) return status;
  // The mode as the handle keeps it, so that no later call reads a plane that was left unfilled.
  return PrepareTextures(FilterHandleView(*handle).header().mode(), size.width, size.height,
                         eDirection, pack.data(), *handle);
}

Status FilterInitUnsized(std::uint32_t eMode, std::uint32_t eDirection, FilterHandle** handle,
                         const FilterAllocator& allocator, const char* resourceDir) {
  const HandleRequest request = {eMode,      kPackTextureSize, kStoredSmallTextures, false,
                                 eDirection, allocator,        resourceDir};
  HostBlock pack;
  const Status status = startHandle(request, pack, handle);
  if (status == Status::kOk) copyTextures(pack.data(), FilterHandleView(*handle));
  return status;
}

}  // namespace lumora
