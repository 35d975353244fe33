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

// The rest of a row as a full vector of kBytesPerPixel bytes a pixel.
template <int kBytesPerPixel>
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
  HWY_ALIGN std::uint8_t block_[kBytesPerPixel > 0 ? kLanes8* kBytesPerPixel : 1] = {};
};

template <class Texture, class Step>
HWY_INLINE void stepRgba(std::uint8_t* pixels, const std::uint8_t* texture, const Step& step) {
  Pixels<Texture> p;
  V8 alpha;
  hn::LoadInterleaved4(d8, pixels, p.colour.r, p.colour.g, p.colour.b, alpha);
  p.luma = GrayFromRGB(p.colour);
  p.texels = Texture::load(texture);
  const Rgb out = step(p);
  hn::StoreInterleaved4(out.r, out.g, out.b, alpha, d8, pixels);
}

template <class Texture, class Step>
void walkRgba(const LookJob& job, const Step step) {
  TailBlock<4> tail;
  TailBlock<Texture::kBytesPerPixel> textureTail;
  for (int y = 0; y < job.rows; ++y) {
    std::uint8_t* const row = job.pixels + y * job.strideBytes;
    const std::uint8_t* const textureRow =
        job.texture + static_cast<std::ptrdiff_t>(y) * job.widthPixels * Texture::kBytesPerPixel;
    for (int x = 0; x < job.widthPixels; x += kLanes8) {
      const int left = job.widthPixels - x;
      std::uint8_t* pixels = row + 4 * x;
      const std::uint8_t* texture = textureRow + Texture::kBytesPerPixel * x;
      if (left < kLanes8) {
        pixels = tail.load(pixels, left);
        texture = textureTail.load(texture, left);
      }
      stepRgba<Texture>(pixels, texture, step);
      if (left < kLanes8) tail.store(row + 4 * x);
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
  TailBlock<1> top, bottom, chroma;
  TailBlock<Texture::kBytesPerPixel> topTexture, bottomTexture;

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
  const ChromaTerms terms =
      chromaTerms<kOrder>(hn::LoadU(d8, at.chroma), Step::kConversion.neutralIn);
  Pixels<Texture> p;
  p.luma = hn::LoadU(d8, at.top);
  p.colour = ConvertYUV2RGB(p.luma, terms);
  p.texels = Texture::load(at.topTexture);
  const Rgb top = step(p);
  p.luma = hn::LoadU(d8, at.bottom);
  p.colour = ConvertYUV2RGB(p.luma, terms);
  p.texels = Texture::load(at.bottomTexture);
  const Rgb bottom = step(p);
  const NvBlock out = ConvertRGB2YUV<kOrder, Step::kConversion>(top, bottom);
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

// Looks that need only the luma of NV pictures: step is a function of one vector of bytes.
template <class Step>
void walkLuma(const LookJob& job, const Step step) {
  TailBlock<1> tail;
  for (int y = 0; y < job.rows; ++y) {
    std::uint8_t* const row = job.pixels + y * job.strideBytes;
    for (int x = 0; x < job.widthPixels; x += kLanes8) {
      const int left = job.widthPixels - x;
      std::uint8_t* const luma = left < kLanes8 ? tail.load(row + x, left) : row + x;
      hn::StoreU(step(hn::LoadU(d8, luma)), d8, luma);
      if (left < kLanes8) tail.store(row + x);
    }
  }
}

// Grey pictures: every chroma byte becomes 127.
HWY_INLINE void neutraliseChroma(const LookJob& job) {
  for (int m = 0; m < job.rows / 2; ++m) {
    memset(job.chroma + m * job.strideBytes, 127, static_cast<size_t>(job.widthPixels));
  }
}

}  // namespace lumora::HWY_NAMESPACE
