// The walks over RGBA rows and NV row pairs, with their row tails. Level sources only.
//
// A look gives a step, a function of Pixels that returns the new colours; it is a pure function of
// each pixel, so the last, incomplete vector of a row goes through a block on the stack: the bytes
// of the row that are left are copied in, run as a full vector, and copied back. Nothing outside a
// row's own pixels is read or written. There is one call of the step per row of the loop, which
// keeps it and the curves it holds in registers.
#pragma once

#include <string.h>

#include "looks/colour/chroma.h"
#include "looks/colour/texels.h"
#include "looks/look.h"

namespace lumora::HWY_NAMESPACE {

// The rest of a row as kPixels pixels of kBytesPerPixel bytes.
template <int kPixels, int kBytesPerPixel>
class TailBlock {
 public:
  HWY_INLINE std::uint8_t* load(const std::uint8_t* row, int pixels) {
    bytes_ = static_cast<size_t>(pixels) * kBytesPerPixel;
    // A row of nothing has no address.
    if constexpr (kBytesPerPixel > 0) memcpy(block_, row, bytes_);
    return block_;
  }
  HWY_INLINE void store(std::uint8_t* row) const { memcpy(row, block_, bytes_); }

 private:
  size_t bytes_ = 0;
  HWY_ALIGN std::uint8_t block_[kBytesPerPixel > 0 ? kPixels* kBytesPerPixel : 1] = {};
};

// The steps run on two vectors at a time, which keeps the processor busy while either waits for its
// own results. Most steps are a function of one vector; one of several stages may take both, so
// that each stage is done with both before the next one begins.
template <class Step, class Texture>
HWY_INLINE void applyStep(const Step& step, Pixels<Texture>& a, Pixels<Texture>& b) {
  if constexpr (requires { step(a, b); }) {
    step(a, b);
  } else {
    a.colour = step(a);
    b.colour = step(b);
  }
}

inline constexpr int kRgbaPixels = 2 * kLanes8;

template <class Step>
HWY_INLINE void stepRgba(std::uint8_t* pixels, const std::uint8_t* texture, const Step& step) {
  using Texture = typename Step::Texture;
  Rgba a = loadRgba(pixels), b = loadRgba(pixels + 4 * kLanes8);
  constexpr int kNextTexels = kLanes8 * Texture::kBytesPerPixel;
  Pixels<Texture> pa{a.colour, GrayFromRGB(a.colour), Texture::loadInRgbaOrder(texture)};
  Pixels<Texture> pb{b.colour, GrayFromRGB(b.colour),
                     Texture::loadInRgbaOrder(texture + kNextTexels)};
  applyStep(step, pa, pb);
  storeRgba({pa.colour, a.alpha}, pixels);
  storeRgba({pb.colour, b.alpha}, pixels + 4 * kLanes8);
}

template <class Step>
void walkRgba(const LookJob& job, const Step step) {
  constexpr int kTexelBytes = Step::Texture::kBytesPerPixel;
  TailBlock<kRgbaPixels, 4> tail;
  TailBlock<kRgbaPixels, kTexelBytes> textureTail;
  for (int y = 0; y < job.rows; ++y) {
    std::uint8_t* const row = job.pixels + y * job.strideBytes;
    const std::uint8_t* const textureRow =
        job.texture + static_cast<std::ptrdiff_t>(y) * job.widthPixels * kTexelBytes;
    for (int x = 0; x < job.widthPixels; x += kRgbaPixels) {
      const int left = job.widthPixels - x;
      std::uint8_t* pixels = row + 4 * x;
      const std::uint8_t* texture = textureRow + kTexelBytes * x;
      if (left < kRgbaPixels) {
        pixels = tail.load(pixels, left);
        texture = textureTail.load(texture, left);
      }
      stepRgba(pixels, texture, step);
      if (left < kRgbaPixels) tail.store(row + 4 * x);
    }
  }
}

// One vector of columns of a row pair: two rows of luma, their chroma pairs and textures.
struct NvPointers {
  std::uint8_t* top;
  std::uint8_t* bottom;
  std::uint8_t* chroma;
  const std::uint8_t* topTexture;
  const std::uint8_t* bottomTexture;
};

template <class Texture>
struct NvTail {
  TailBlock<kLanes8, 1> top, bottom, chroma;
  TailBlock<kLanes8, Texture::kBytesPerPixel> topTexture, bottomTexture;

  HWY_INLINE NvPointers load(const NvPointers& at, int columns) {
    return {top.load(at.top, columns), bottom.load(at.bottom, columns),
            chroma.load(at.chroma, columns), topTexture.load(at.topTexture, columns),
            bottomTexture.load(at.bottomTexture, columns)};
  }
  HWY_INLINE void store(const NvPointers& at) const {
    top.store(at.top);
    bottom.store(at.bottom);
    chroma.store(at.chroma);
  }
};

template <class Step, ChromaOrder kOrder>
HWY_INLINE void stepNv(const NvPointers& at, const Step& step) {
  using Texture = typename Step::Texture;
  const ChromaShifts shifts =
      chromaShifts<kOrder, Step::kConversion.neutralIn>(hn::LoadU(d8, at.chroma));
  const V8 topLuma = hn::LoadU(d8, at.top), bottomLuma = hn::LoadU(d8, at.bottom);
  Pixels<Texture> top{ConvertYUV2RGB(topLuma, shifts), topLuma, Texture::load(at.topTexture)};
  Pixels<Texture> bottom{ConvertYUV2RGB(bottomLuma, shifts), bottomLuma,
                         Texture::load(at.bottomTexture)};
  applyStep(step, top, bottom);
  const NvBlock out = ConvertRGB2YUV<kOrder, Step::kConversion>(top.colour, bottom.colour);
  hn::StoreU(out.top, d8, at.top);
  hn::StoreU(out.bottom, d8, at.bottom);
  hn::StoreU(out.chroma, d8, at.chroma);
}

template <ChromaOrder kOrder, class Step>
void walkNv(const LookJob& job, const Step step) {
  using Texture = typename Step::Texture;
  NvTail<Texture> tail;
  for (int y = 0; y < job.rows; y += 2) {
    std::uint8_t* const topRow = job.pixels + y * job.strideBytes;
    std::uint8_t* const chromaRow = job.chroma + y / 2 * job.strideBytes;
    const std::ptrdiff_t texturePitch =
        static_cast<std::ptrdiff_t>(job.widthPixels) * Texture::kBytesPerPixel;
    const std::uint8_t* const textureRow = job.texture + y * texturePitch;
    for (int x = 0; x < job.widthPixels; x += kLanes8) {
      const int left = job.widthPixels - x;
      const std::uint8_t* const texture = textureRow + Texture::kBytesPerPixel * x;
      const NvPointers inRow{topRow + x, topRow + job.strideBytes + x, chromaRow + x, texture,
                             texture + texturePitch};
      const NvPointers at = left < kLanes8 ? tail.load(inRow, left) : inRow;
      stepNv<Step, kOrder>(at, step);
      if (left < kLanes8) tail.store(inRow);
    }
  }
}

// Work on rows of bytes as they lie there, kPixelBytes a pixel: the luma plane of NV pictures, or
// interleaved pixels. The step is a function of a vector of bytes and the place of its texels.
template <int kPixelBytes, class Texture, class Step>
void walkBytes(const LookJob& job, const Step step) {
  constexpr int kPixels = kLanes8 / kPixelBytes;
  TailBlock<kPixels, kPixelBytes> tail;
  TailBlock<kPixels, Texture::kBytesPerPixel> textureTail;
  for (int y = 0; y < job.rows; ++y) {
    std::uint8_t* const row = job.pixels + y * job.strideBytes;
    const std::uint8_t* const textureRow =
        job.texture + static_cast<std::ptrdiff_t>(y) * job.widthPixels * Texture::kBytesPerPixel;
    for (int x = 0; x < job.widthPixels; x += kPixels) {
      const int left = job.widthPixels - x;
      std::uint8_t* bytes = row + kPixelBytes * x;
      const std::uint8_t* texture = textureRow + Texture::kBytesPerPixel * x;
      if (left < kPixels) {
        bytes = tail.load(bytes, left);
        texture = textureTail.load(texture, left);
      }
      hn::StoreU(step(hn::LoadU(d8, bytes), texture), d8, bytes);
      if (left < kPixels) tail.store(row + kPixelBytes * x);
    }
  }
}

// Grey pictures: every chroma byte becomes 127. Packed rows are filled in one go, at which the C
// library is faster than at many short fills.
HWY_INLINE void neutraliseChroma(const LookJob& job) {
  const bool isPacked = job.strideBytes == job.widthPixels;
  const int fills = isPacked ? 1 : job.rows / 2;
  const int rowsPerFill = isPacked ? job.rows / 2 : 1;
  for (int m = 0; m < fills; ++m) {
    memset(job.chroma + m * job.strideBytes, 127,
           static_cast<size_t>(job.widthPixels) * static_cast<size_t>(rowsPerFill));
  }
}

}  // namespace lumora::HWY_NAMESPACE
