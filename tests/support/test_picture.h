// Pictures of any format in guarded memory, the noise that fills them, and the vector levels.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/picture.h"
#include "platform/vector_level.h"
#include "support/guarded_buffer.h"

namespace lumora::test {

using Bytes = std::vector<std::uint8_t>;

// The large matrices run with fewer cases under emulation, sanitizers and valgrind.
#ifdef LUMORA_REDUCED_TESTS
inline constexpr bool kReduced = true;
#else
inline constexpr bool kReduced = false;
#endif

inline constexpr const char* kNone = "none";
inline constexpr PixelFormat kFormats[] = {PixelFormat::kRgba, PixelFormat::kNv21,
                                           PixelFormat::kNv12};

const char* formatName(PixelFormat format);

// xorshift32: the same noise everywhere.
class Noise {
 public:
  explicit Noise(std::uint32_t seed) : state_(seed * 2654435761u + 1u) {}
  std::uint32_t next() {
    state_ ^= state_ << 13;
    state_ ^= state_ >> 17;
    state_ ^= state_ << 5;
    return state_;
  }
  std::uint8_t byte() { return static_cast<std::uint8_t>(next() >> 11); }

 private:
  std::uint32_t state_;
};

Bytes noiseBytes(std::size_t count, std::uint32_t seed);
std::uint64_t checksumOf(const Bytes& bytes);  // FNV-1a

template <class T>
constexpr std::uint8_t toByte(T v) {
  return static_cast<std::uint8_t>(v);
}

// A picture whose last byte (padding of the last row included) lies right before an inaccessible
// page, or the first one right after it; before a page its address is odd when its size is. Filled
// with noise, padding and alpha too.
class TestPicture {
 public:
  TestPicture(PixelFormat format, int width, int height, int extraStride = 0,
              std::uint32_t seed = 1, Placement placement = Placement::kBeforePage);
  // The same bytes in memory of its own, before a page.
  TestPicture(const TestPicture& other);

  Picture view() const { return view_; }
  FilterImage image() const;
  std::uint8_t* data() const { return view_.data; }
  std::size_t bytes() const { return buffer_.size(); }
  Bytes snapshot() const { return {data(), data() + bytes()}; }
  // Nothing beside the picture, in its padding or (RGBA, where asked for) in its alpha has changed.
  bool keepsBorders(const Bytes& before, bool alphaToo = true) const;
  // The first byte that differs, beside the picture too, or kNone.
  std::string difference(const Bytes& expected) const;
  std::string difference(const TestPicture& expected) const;
  std::string description() const;  // format and size
  void assign(const Bytes& bytes);
  // Mixes the untouched picture in, as strengths below the full one do; weight is this one's share.
  void mixIn(const TestPicture& untouched, int weight);
  // Every pixel this colour (RGBA), or these luma and chroma bytes (NV).
  void fill(int a, int b, int c, int alpha = 255);

 private:
  GuardedBuffer buffer_;
  Picture view_;
};

// Every vector level this processor has.
std::vector<int> supportedLevels();

// Uses one vector level while it lives.
class ForcedLevel {
 public:
  explicit ForcedLevel(int level) { forceVectorLevel(level); }
  ~ForcedLevel() { forceVectorLevel(-1); }
  ForcedLevel(const ForcedLevel&) = delete;
  ForcedLevel& operator=(const ForcedLevel&) = delete;
};

}  // namespace lumora::test
