// The walks over RGBA rows and NV row pairs. Level sources only.
//
// A look gives a step, a function of Pixels that returns the new colours; it is a pure function of
// each pixel, so that the missing pixels of a row's last vector may be anything.
#pragma once

#include "pixels/chroma.h"
#include "pixels/mix.h"
#include "pixels/pixel_rows.h"
#include "pixels/row_walk.h"
#include "pixels/stages.h"

namespace lumora::HWY_NAMESPACE {

inline constexpr int kRgbaPixels = 2 * kLanes8;

template <class Step, class Mix>
HWY_INLINE void stepRgba(std::uint8_t* pixels, const std::uint8_t* texture, const Step& step,
                         const Mix& mix) {
  using Texture = typename Step::Texture;
  Rgba a = loadRgba(pixels), b = loadRgba(pixels + 4 * kLanes8);
  constexpr int kNextTexels = kLanes8 * Texture::kBytesPerPixel;
  Pixels<Texture> pa{a.colour, GrayFromRGB(a.colour), Texture::loadInRgbaOrder(texture)};
  Pixels<Texture> pb{b.colour, GrayFromRGB(b.colour),
                     Texture::loadInRgbaOrder(texture + kNextTexels)};
  applyStep(step, pa, pb);
  storeRgba({mix(a.colour, pa.colour), a.alpha}, pixels);
  storeRgba({mix(b.colour, pb.colour), b.alpha}, pixels + 4 * kLanes8);
}

// The texture of row y of the run.
template <class Texture>
HWY_INLINE const std::uint8_t* textureRow(const PixelRows& rows, int y) {
  if constexpr (Texture::kBytesPerPixel == 0) return nullptr;
  if (rows.textureRows != nullptr) return rows.textureRows->row(rows.firstRow + y);
  const std::ptrdiff_t rowBytes = std::ptrdiff_t{Texture::kBytesPerPixel} * rows.widthPixels;
  return rows.texture + y * rowBytes;
}

template <class Step, class Mix = TakeNew>
void walkRgba(const PixelRows& rows, const Step step, const Mix mix = {}) {
  using Texture = typename Step::Texture;
  for (int y = 0; y < rows.rows; ++y) {
    walkRow<kRgbaPixels>(
        rows.widthPixels,
        [&](std::ptrdiff_t, std::uint8_t* pixels, const std::uint8_t* texture) {
          stepRgba(pixels, texture, step, mix);
        },
        Changes<4>{rows.pixels + y * rows.strideBytes},
        Reads<Texture::kBytesPerPixel>{textureRow<Texture>(rows, y)});
  }
}

// One row by a step in two halves, whose work is one long chain of dependent results: every vector
// is started while the one before it is finished, which fills the waits of both.
template <class Step>
HWY_INLINE void walkRgbaRowInHalves(std::uint8_t* row, const std::uint8_t* texture,
                                    std::ptrdiff_t widthPixels, const Step& step) {
  constexpr int kTexelBytes = Step::Texture::kBytesPerPixel;
  const std::ptrdiff_t inVectors = widthPixels / kLanes8 * kLanes8;
  if (inVectors > 0) {
    auto started = step.start(loadRgba(row), texture);
    for (std::ptrdiff_t x = kLanes8; x < inVectors; x += kLanes8) {
      const Rgba next = loadRgba(row + 4 * x);
      const Rgba out = step.finish(started);
      started = step.start(next, texture + kTexelBytes * x);
      storeRgba(out, row + 4 * (x - kLanes8));
    }
    storeRgba(step.finish(started), row + 4 * (inVectors - kLanes8));
  }
  walkRow<kLanes8>(
      widthPixels - inVectors,
      [&](std::ptrdiff_t, std::uint8_t* at, const std::uint8_t* texels) {
        storeRgba(step.finish(step.start(loadRgba(at), texels)), at);
      },
      Changes<4>{row + 4 * inVectors}, Reads<kTexelBytes>{texture + kTexelBytes * inVectors});
}

// One vector of columns of a row pair: two rows of luma, their chroma pairs and textures.
struct NvPointers {
  std::uint8_t* top;
  std::uint8_t* bottom;
  std::uint8_t* chroma;
  const std::uint8_t* topTexture;
  const std::uint8_t* bottomTexture;
};

template <class Step, class Mix>
HWY_INLINE void stepNv(const NvPointers& at, const Step& step, const Mix& mix, V8 order) {
  using Texture = typename Step::Texture;
  const V8 chroma = hn::LoadU(d8, at.chroma);
  const ChromaShifts shifts =
      chromaShifts<Step::kConversion.neutralIn>(hn::TableLookupBytes(chroma, order));
  const V8 topLuma = hn::LoadU(d8, at.top), bottomLuma = hn::LoadU(d8, at.bottom);
  Pixels<Texture> top{ConvertYUV2RGB(topLuma, shifts), topLuma, Texture::load(at.topTexture)};
  Pixels<Texture> bottom{ConvertYUV2RGB(bottomLuma, shifts), bottomLuma,
                         Texture::load(at.bottomTexture)};
  applyStep(step, top, bottom);
  const NvBlock out = ConvertRGB2YUV<Step::kConversion>(top.colour, bottom.colour, order);
  hn::StoreU(mix(topLuma, out.top), d8, at.top);
  hn::StoreU(mix(bottomLuma, out.bottom), d8, at.bottom);
  hn::StoreU(mix(chroma, out.chroma), d8, at.chroma);
}

template <class Step, class Mix = TakeNew>
void walkNv(const PixelRows& rows, const Step step, const Mix mix = {}) {
  using Texture = typename Step::Texture;
  using TexelRow = Reads<Texture::kBytesPerPixel>;
  const V8 order = chromaOrder(rows.format);
  for (int y = 0; y < rows.rows; y += 2) {
    std::uint8_t* const top = rows.pixels + y * rows.strideBytes;
    const std::uint8_t* const topTexture = textureRow<Texture>(rows, y);
    const std::uint8_t* const bottomTexture = textureRow<Texture>(rows, y + 1);
    walkRow<kLanes8>(
        rows.widthPixels,
        [&](std::ptrdiff_t, auto*... places) { stepNv(NvPointers{places...}, step, mix, order); },
        Changes<1>{top}, Changes<1>{top + rows.strideBytes},
        Changes<1>{rows.chroma + y / 2 * rows.strideBytes}, TexelRow{topTexture},
        TexelRow{bottomTexture});
  }
}

// Work on rows of bytes as they lie there, kPixelBytes a pixel: the luma plane of NV pictures, or
// interleaved pixels. The step is a function of a vector of bytes and the place of its texels.
template <int kPixelBytes, class Texture, class Step, class Mix = TakeNew>
void walkBytes(const PixelRows& rows, const Step step, const Mix mix = {}) {
  for (int y = 0; y < rows.rows; ++y) {
    walkRow<kLanes8 / kPixelBytes>(
        rows.widthPixels,
        [&](std::ptrdiff_t, std::uint8_t* at, const std::uint8_t* texture) {
          const V8 bytes = hn::LoadU(d8, at);
          hn::StoreU(mix(bytes, step(bytes, texture)), d8, at);
        },
        Changes<kPixelBytes>{rows.pixels + y * rows.strideBytes},
        Reads<Texture::kBytesPerPixel>{textureRow<Texture>(rows, y)});
  }
}

inline constexpr std::uint8_t kNeutralChroma = 127;

// Grey pictures: every chroma byte becomes neutral. Packed rows are filled in one go, at which the
// C library is faster than at many short fills.
HWY_INLINE void neutraliseChroma(const PixelRows& rows, const TakeNew&) {
  const bool isPacked = rows.strideBytes == rows.widthPixels;
  const int fills = isPacked ? 1 : rows.rows / 2;
  const int rowsPerFill = isPacked ? rows.rows / 2 : 1;
  for (int m = 0; m < fills; ++m) {
    memset(rows.chroma + m * rows.strideBytes, kNeutralChroma,
           static_cast<size_t>(rows.widthPixels) * static_cast<size_t>(rowsPerFill));
  }
}
HWY_INLINE void neutraliseChroma(const PixelRows& rows, const MixByWeight& mix) {
  for (int m = 0; m < rows.rows / 2; ++m) {
    walkRow<kLanes8>(
        rows.widthPixels,
        [&](std::ptrdiff_t, std::uint8_t* at) {
          hn::StoreU(mix(hn::LoadU(d8, at), hn::Set(d8, kNeutralChroma)), d8, at);
        },
        Changes<1>{rows.chroma + m * rows.strideBytes});
  }
}

}  // namespace lumora::HWY_NAMESPACE
