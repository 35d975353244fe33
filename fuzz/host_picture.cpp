#include "host_picture.h"

#include <algorithm>

namespace lumora::fuzz {
namespace {

// Larger pictures only cost time.
constexpr std::uint64_t kMostPixels = 135'000;
constexpr std::uint64_t kMostBytes = 600'000;

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
  const bool large = std::uint64_t{image_.height} * image_.stride > kMostBytes ||
                     std::uint64_t{image_.width} * image_.height > kMostPixels || oneIn(in, 16);
  if (large) return;
  picture_.emplace(static_cast<PixelFormat>(image_.eFormat), image_.width, image_.height,
                   static_cast<int>(image_.stride - rowBytes(image_)),
                   in.ConsumeIntegral<std::uint8_t>());
  image_ = picture_->image();
  const std::uint8_t kept = in.ConsumeIntegral<std::uint8_t>();  // 0: one colour everywhere
  std::for_each_n(picture_->data(), picture_->bytes(),
                  [kept](std::uint8_t& byte) { byte &= kept; });
}

}  // namespace lumora::fuzz
