// Blocks of the host's memory that give themselves back.
#pragma once

#include <cstdint>
#include <utility>

#include "lumora/filters.h"

namespace lumora {

inline constexpr const char* kAllocationTag = "Lumora_Filters";
inline constexpr std::uint64_t kBlockAlignment = 16;

// The first 16-byte boundary at or after address.
inline std::uint8_t* alignedBase(void* address) {
  const auto value = reinterpret_cast<std::uintptr_t>(address);
  const auto padding = (kBlockAlignment - value % kBlockAlignment) % kBlockAlignment;
  return static_cast<std::uint8_t*>(address) + padding;
}

// Obtains bytes from the host. A count that the allocator's 32-bit size cannot express is exhausted
// memory: null, without a request.
inline void* requestFromHost(const FilterAllocator& allocator, std::uint64_t bytes) {
  if (bytes > UINT32_MAX) return nullptr;
  return allocator.allocate(static_cast<std::uint32_t>(bytes), kAllocationTag, 0);
}

// Owns one block. The request is `slack` bytes larger than needed, so that data() can start at a
// 16-byte boundary whatever the host's alignment.
class HostBlock {
 public:
  HostBlock() = default;
  HostBlock(const FilterAllocator& allocator, std::uint64_t bytes,
            std::uint64_t slack = kBlockAlignment)
      : allocator_(&allocator), address_(requestFromHost(allocator, bytes + slack)) {}
  HostBlock(HostBlock&& other) noexcept
      : allocator_(other.allocator_), address_(std::exchange(other.address_, nullptr)) {}
  HostBlock& operator=(HostBlock&& other) noexcept {
    std::swap(allocator_, other.allocator_);
    std::swap(address_, other.address_);
    return *this;
  }
  ~HostBlock() { release(); }

  explicit operator bool() const { return address_ != nullptr; }
  std::uint8_t* data() const { return alignedBase(address_); }

  // Gives the block back before its owner goes away.
  void release() {
    if (address_ != nullptr) {
      allocator_->release(std::exchange(address_, nullptr), kAllocationTag, 0);
    }
  }

 private:
  const FilterAllocator* allocator_ = nullptr;
  void* address_ = nullptr;
};

}  // namespace lumora
