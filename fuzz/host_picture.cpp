#include "host_picture.h"

#include <algorithm>
#include <cstring>

#include "support/test_picture.h"

namespace lumora::fuzz {
namespace {

// Larger pictures only cost time.
constexpr std::uint64_t kMostPixels = 300'000;
constexpr std::uint64_t kMostBytes = 4'000'000;

std::int64_t rowBytes(const FilterImage& image) {
  return std::int64_t{image.width} * (image.eFormat == LUMORA_FORMAT_RGBA ? 4 : 1);
}

bool isPicture(const FilterImage& image) {
  const bool known = image.eFormat >= LUMORA_FORMAT_RGBA && image.eFormat <= LUMORA_FORMAT_NV12;
  const bool inRange =
      image.width >= 88 && image.width <= 20000 && image.height >= 88 && image.height <= 20000;
  const bool odd = image.width % 2 != 0 || image.height % 2 != 0;
  return known && inRange && image.stride >= rowBytes(image) &&
         (image.eFormat == LUMORA_FORMAT_RGBA || !odd);
}

std::uint64_t pictureBytes(const FilterImage& image) {
  const std::uint64_t plane = static_cast<std::uint64_t>(image.stride) * image.height;
  return image.eFormat == LUMORA_FORMAT_RGBA ? plane : plane * 3 / 2;
}

}  // namespace

std::uint8_t* inaccessibleAddress() {
  static const test::GuardedBuffer nothing(0);
  return nothing.data();
}

HostPicture::HostPicture(FuzzedDataProvider& in) {
  image_.eFormat = mostlyIn<std::uint32_t>(in, 1, 3);
  image_.width = mostlyIn<std::uint32_t>(in, 88, 130);
  image_.height = mostlyIn<std::uint32_t>(in, 88, 110);
  const auto smallest = static_cast<std::int32_t>(std::min<std::int64_t>(rowBytes(image_), 80000));
  image_.stride = mostlyIn<std::int32_t>(in, smallest, smallest + 40);
  if (!isPicture(image_)) {
    image_.picData = in.ConsumeBool() ? inaccessibleAddress() : nullptr;
    return;
  }
  const std::uint64_t bytes = pictureBytes(image_);
  const bool large = bytes > kMostBytes ||
                     std::uint64_t{image_.width} * image_.height > kMostPixels ||
                     in.ConsumeIntegralInRange(0, 15) == 0;
  if (large) return;
  memory_ = std::make_unique<test::GuardedBuffer>(bytes);
  image_.picData = memory_->data();
  test::Noise noise(in.ConsumeIntegral<std::uint8_t>());
  const std::uint8_t kept = in.ConsumeIntegral<std::uint8_t>();  // 0: one colour everywhere
  std::generate_n(memory_->data(), bytes,
                  [&] { return static_cast<std::uint8_t>(noise.byte() & kept); });
}

std::vector<std::uint8_t> HostPicture::bytes() const {
  if (!hasMemory()) return {};
  return {memory_->data(), memory_->data() + memory_->size()};
}

void HostPicture::assign(const std::vector<std::uint8_t>& bytes) const {
  std::copy(bytes.begin(), bytes.end(), memory_->data());
}

bool HostPicture::keepsPadding(const std::vector<std::uint8_t>& before) const {
  if (!hasMemory()) return true;
  const auto stride = static_cast<std::size_t>(image_.stride);
  const auto used = static_cast<std::size_t>(rowBytes(image_));
  for (std::size_t row = 0; row < before.size(); row += stride) {
    const std::size_t begin = std::min(row + used, before.size());
    const std::size_t end = std::min(row + stride, before.size());
    if (std::memcmp(memory_->data() + begin, before.data() + begin, end - begin) != 0) return false;
  }
  return memory_->isIntact();
}

}  // namespace lumora::fuzz
