#include "support/test_picture.h"

#include <algorithm>
#include <cstring>
#include <sstream>

namespace lumora::test {
namespace {

std::size_t byteCount(PixelFormat format, int height, std::ptrdiff_t stride) {
  const auto plane = static_cast<std::size_t>(stride) * static_cast<std::size_t>(height);
  return format == PixelFormat::kRgba ? plane : plane * 3 / 2;
}

std::ptrdiff_t strideOf(PixelFormat format, int width, int extraStride) {
  return std::ptrdiff_t{width} * (format == PixelFormat::kRgba ? 4 : 1) + extraStride;
}

}  // namespace

const char* formatName(PixelFormat format) {
  static constexpr const char* kNames[] = {"", "rgba", "nv21", "nv12"};
  return kNames[static_cast<int>(format)];
}

Bytes noiseBytes(std::size_t count, std::uint32_t seed) {
  Bytes bytes(count);
  Noise noise(seed);
  std::generate(bytes.begin(), bytes.end(), [&] { return noise.byte(); });
  return bytes;
}

std::uint64_t checksumOf(const Bytes& bytes) {
  std::uint64_t sum = 0xCBF29CE484222325u;
  for (const std::uint8_t byte : bytes) sum = (sum ^ byte) * 0x100000001B3u;
  return sum;
}

TestPicture::TestPicture(PixelFormat format, int width, int height, int extraStride,
                         std::uint32_t seed, Placement placement)
    : buffer_(byteCount(format, height, strideOf(format, width, extraStride)), placement),
      view_{format, buffer_.data(), width, height, strideOf(format, width, extraStride)} {
  assign(noiseBytes(bytes(), seed));
}

TestPicture::TestPicture(const TestPicture& other) : buffer_(other.bytes()), view_(other.view_) {
  view_.data = buffer_.data();
  assign(other.snapshot());
}

FilterImage TestPicture::image() const {
  return {static_cast<std::uint32_t>(view_.format), view_.data,
          static_cast<std::uint32_t>(view_.widthPixels),
          static_cast<std::uint32_t>(view_.heightRows),
          static_cast<std::int32_t>(view_.strideBytes)};
}

bool TestPicture::keepsBorders(const Bytes& before, bool alphaToo) const {
  const auto stride = static_cast<std::size_t>(view_.strideBytes);
  const std::size_t rowBytes =
      static_cast<std::size_t>(view_.widthPixels) * (view_.isRgba() ? 4 : 1);
  for (std::size_t row = 0; row < bytes(); row += stride) {
    if (std::memcmp(data() + row + rowBytes, &before[row] + rowBytes, stride - rowBytes) != 0) {
      return false;
    }
    for (std::size_t i = row + 3; alphaToo && view_.isRgba() && i < row + rowBytes; i += 4) {
      if (data()[i] != before[i]) return false;
    }
  }
  return buffer_.isIntact();
}

std::string TestPicture::difference(const Bytes& expected) const {
  if (expected.size() != bytes()) return "the size";
  if (!buffer_.isIntact()) return "beside the picture";
  const auto found = std::mismatch(expected.begin(), expected.end(), data());
  if (found.first == expected.end()) return kNone;
  const auto offset = found.first - expected.begin();
  std::ostringstream text;
  text << "byte " << offset << " (row " << offset / view_.strideBytes << ", "
       << offset % view_.strideBytes << " bytes in) is " << int{*found.second} << ", expected "
       << int{*found.first};
  return text.str();
}

std::string TestPicture::difference(const TestPicture& expected) const {
  return difference(expected.snapshot());
}

std::string TestPicture::description() const {
  return std::string(formatName(view_.format)) + ' ' + std::to_string(view_.widthPixels) + " x " +
         std::to_string(view_.heightRows);
}

void TestPicture::assign(const Bytes& bytes) { std::copy(bytes.begin(), bytes.end(), data()); }

void TestPicture::fill(int a, int b, int c, int alpha) {
  for (int y = 0; y < view_.heightRows; ++y) {
    for (int x = 0; x < view_.widthPixels; ++x) {
      if (view_.isRgba()) {
        const std::uint8_t pixel[4] = {toByte(a), toByte(b), toByte(c), toByte(alpha)};
        std::memcpy(view_.row(y) + 4 * x, pixel, 4);
      } else {
        view_.row(y)[x] = toByte(a);
        if (y % 2 == 0) view_.chroma()[y / 2 * view_.strideBytes + x] = toByte(x % 2 == 0 ? b : c);
      }
    }
  }
}

void TestPicture::mixIn(const TestPicture& untouched, int weight) {
  for (std::size_t i = 0; i < bytes(); ++i) {
    data()[i] = toByte((untouched.data()[i] * (16 - weight) + data()[i] * weight + 8) >> 4);
  }
}

std::vector<int> supportedLevels() {
  std::vector<int> levels;
  for (int level = 0; level < kVectorLevelCount; ++level) {
    if (vectorLevelSupported(level)) levels.push_back(level);
  }
  return levels;
}

}  // namespace lumora::test
