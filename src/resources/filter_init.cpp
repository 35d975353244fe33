#include "resources/filter_init.h"

#include <cstring>

#include "platform/log.h"
#include "resources/handle_layout.h"

namespace lumora {
namespace {

Status makeHandle(std::uint32_t mode, std::uint32_t direction, PixelSize size,
                  SmallTextureSizes small, bool prepared, FilterHandle** handle,
                  const FilterAllocator& allocator) {
  void* const block = requestFromHost(allocator, handleBytes(size, small));
  *handle = static_cast<FilterHandle*>(block);
  if (block == nullptr) return fail(Status::kNoMemory, "[%s] \ncan't malloc enough memory!");
  const FilterHandleView view(*handle);
  view.allocator() = allocator;
  TextureHeader& header = view.header();
  header.setTextureSize(static_cast<std::uint32_t>(size.width),
                        static_cast<std::uint32_t>(size.height));
  header.direction() = static_cast<std::uint8_t>(direction);
  header.mode() = static_cast<std::uint8_t>(mode);
  header.prepared() = prepared;
  std::memset(view.params(), 1, kFilterParamsBytes);
  return Status::kOk;
}

}  // namespace

Status FilterInitSized(std::uint32_t mode, std::uint32_t width, std::uint32_t height,
                       std::uint32_t direction, FilterHandle** handle,
                       const FilterAllocator& allocator, const char*) {
  return makeHandle(mode, direction,
                    {static_cast<std::int32_t>(width), static_cast<std::int32_t>(height)},
                    smallTextureSizes(width, height), true, handle, allocator);
}

Status FilterInitUnsized(std::uint32_t mode, std::uint32_t direction, FilterHandle** handle,
                         const FilterAllocator& allocator, const char*) {
  return makeHandle(mode, direction, kPackTextureSize, kStoredSmallTextures, false, handle,
                    allocator);
}

}  // namespace lumora
