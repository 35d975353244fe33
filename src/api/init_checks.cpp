#include "api/init_checks.h"

#include <cstdlib>

#include "modes/modes.h"
#include "platform/log.h"
#include "platform/vector_level.h"

namespace lumora {
namespace {

void* defaultAllocate(std::uint32_t size, const char*, std::uint32_t) { return std::malloc(size); }
void defaultRelease(void* address, const char*, std::uint32_t) { std::free(address); }

// The default pair is constant, so concurrent initialisations only ever hand out its address.
Status checkAllocator(const InitRequest& request) {
  if (request.allocator == nullptr) {
    request.allocator = &request.defaultAllocator;
    return Status::kOk;
  }
  if (request.allocator->allocate == nullptr || request.allocator->release == nullptr) {
    return fail(Status::kBadArgument, "[%s] \nmalloc or free function is NULL!");
  }
  return Status::kOk;
}

// A look without a texture runs on every handle and needs none of its own.
bool isInitMode(std::uint32_t mode) {
  return mode == LUMORA_MODE_ANY || mode >= LUMORA_MODE_MOSAIC || usesTexture(mode);
}

bool isInitSize(std::uint32_t width, std::uint32_t height) {
  if (width == 0 && height == 0) return true;
  return width >= LUMORA_SHORTEST_SIDE && width <= LUMORA_LONGEST_SIDE &&
         height >= LUMORA_SHORTEST_SIDE && height <= LUMORA_LONGEST_SIDE;
}

}  // namespace

Status checkInitRequest(const InitRequest& request) {
  const Status allocator = checkAllocator(request);
  if (allocator != Status::kOk) return allocator;
  if (request.direction > 3) {
    return fail(Status::kBadArgument, "[%s] direction is not correct!\n");
  }
  if (!isInitMode(request.mode)) return fail(Status::kBadArgument, "[%s] eMode is not correct!\n");
  if (!isInitSize(request.width, request.height)) {
    return fail(Status::kBadArgument, "[%s] width or height is not correct!\n");
  }
  if (vectorLevel() < 0) return fail(Status::kBadState, "[%s] processor is not supported!\n");
  return Status::kOk;
}

FilterAllocator makeDefaultAllocator() { return {defaultAllocate, defaultRelease}; }

}  // namespace lumora
