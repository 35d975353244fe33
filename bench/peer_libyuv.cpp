#include <libyuv.h>

#include <memory>

#include "peers.h"

namespace lumora::bench {
namespace {

using Work = std::function<void()>;
using SharedBuffer = std::shared_ptr<std::uint8_t[]>;

// libyuv's ARGB has the bytes B, G, R, A; which channel is which does not matter to the time.
std::shared_ptr<std::uint8_t[]> interleavedTable() {
  const ChannelTables& tables = channelTables();
  SharedBuffer table = makeBuffer(1024);
  for (int i = 0; i < 256; ++i) {
    table[4 * i] = tables.r[i];
    table[4 * i + 1] = tables.g[i];
    table[4 * i + 2] = tables.b[i];
    table[4 * i + 3] = static_cast<std::uint8_t>(i);
  }
  return table;
}

Work grey(const TestPicture& p) {
  return [&p] { libyuv::ARGBGray(p.data(), p.stride, 0, 0, p.size.width, p.size.height); };
}

Work curves(const TestPicture& p) {
  return [&p, table = interleavedTable()] {
    libyuv::RGBColorTable(p.data(), p.stride, table.get(), 0, 0, p.size.width, p.size.height);
  };
}

// Two rows of packed RGBA at a time, so that the next step finds its pixels in the cache.
using RowPairStep = std::function<void(std::uint8_t* rows, int y)>;

RowPairStep mixRows(const TestPicture& p) {
  // In 1/64.
  SharedBuffer matrix = makeBuffer(16);
  for (int i = 0; i < 16; ++i) {
    const bool inMix = i / 4 < 3 && i % 4 < 3;
    matrix[i] = static_cast<std::uint8_t>(inMix ? kChannelMix[i / 4][i % 4] / 2 : 64 * (i == 15));
  }
  return [width = p.size.width, matrix](std::uint8_t* rows, int) {
    libyuv::RGBColorMatrix(rows, 4 * width, reinterpret_cast<const std::int8_t*>(matrix.get()), 0,
                           0, width, 2);
  };
}

RowPairStep multiplyRows(const TestPicture& p) {
  const std::size_t bytes = 4 * static_cast<std::size_t>(p.size.pixels());
  const SharedBuffer texture = makeBuffer(bytes);
  std::fill_n(texture.get(), bytes, std::uint8_t{200});
  return [width = p.size.width, texture](std::uint8_t* rows, int y) {
    libyuv::ARGBMultiply(texture.get() + std::ptrdiff_t{4} * width * y, 4 * width, rows, 4 * width,
                         rows, 4 * width, width, 2);
  };
}

Work stepAndCurves(const TestPicture& p, const RowPairStep& step) {
  return [&p, step, table = interleavedTable()] {
    for (int y = 0; y < p.size.height; y += 2) {
      std::uint8_t* const rows = p.data() + static_cast<std::ptrdiff_t>(y) * p.stride;
      step(rows, y);
      libyuv::RGBColorTable(rows, p.stride, table.get(), 0, 0, p.size.width, 2);
    }
  };
}

Work mixAndCurves(const TestPicture& p) { return stepAndCurves(p, mixRows(p)); }
Work textureAndCurves(const TestPicture& p) { return stepAndCurves(p, multiplyRows(p)); }

Work blend(const TestPicture& p) {
  constexpr int kShare = static_cast<int>(256 * kBlendShare);
  const int rows = static_cast<int>(p.bytes / static_cast<std::size_t>(p.stride));
  return [&p, rows] {
    libyuv::InterpolatePlane(p.original(), p.stride, p.data(), p.stride, p.data(), p.stride,
                             p.stride, rows, kShare);
  };
}

Work resizeOneChannel(const TestPicture& p) {
  const SharedBuffer texture = makeBuffer(kTextureSize.width * kTextureSize.height);
  std::fill_n(texture.get(), kTextureSize.width * kTextureSize.height, std::uint8_t{1});
  return [&p, texture] {
    libyuv::ScalePlane(texture.get(), kTextureSize.width, kTextureSize.width, kTextureSize.height,
                       p.data(), p.size.width, p.size.width, p.size.height, libyuv::kFilterNone);
  };
}

Work resizeFourChannels(const TestPicture& p) {
  const SharedBuffer texture = makeBuffer(4 * kTextureSize.width * kTextureSize.height);
  std::fill_n(texture.get(), 4 * kTextureSize.width * kTextureSize.height, std::uint8_t{1});
  return [&p, texture] {
    libyuv::ARGBScale(texture.get(), 4 * kTextureSize.width, kTextureSize.width,
                      kTextureSize.height, p.data(), p.stride, p.size.width, p.size.height,
                      libyuv::kFilterNone);
  };
}

// Three box blurs stand for a Gaussian.
Work shrinkBlurGrow(const TestPicture& p) {
  constexpr int kRadius = 4;
  const int width = p.size.width / kShrink, height = p.size.height / kShrink, stride = 4 * width;
  const std::size_t bytes = static_cast<std::size_t>(stride) * height;
  const SharedBuffer small = makeBuffer(bytes), other = makeBuffer(bytes);
  const SharedBuffer sums = makeBuffer(16 * static_cast<std::size_t>(width) * (height + 1));
  return [=, &p] {
    libyuv::ARGBScale(p.data(), p.stride, p.size.width, p.size.height, small.get(), stride, width,
                      height, libyuv::kFilterBox);
    std::uint8_t* from = small.get();
    std::uint8_t* to = other.get();
    for (int pass = 0; pass < 3; ++pass) {
      libyuv::ARGBBlur(from, stride, to, stride, reinterpret_cast<std::int32_t*>(sums.get()),
                       4 * width, width, height, kRadius);
      std::swap(from, to);
    }
    libyuv::ARGBScale(from, stride, width, height, p.data(), p.stride, p.size.width, p.size.height,
                      libyuv::kFilterBilinear);
  };
}

Work pixelize(const TestPicture& p) {
  const Size rect = mosaicRect(p.size);
  const int width = rect.width / kMosaicBlock, height = rect.height / kMosaicBlock;
  const SharedBuffer small = makeBuffer(4 * static_cast<std::size_t>(width) * height);
  return [=, &p] {
    libyuv::ARGBScale(p.data(), p.stride, rect.width, rect.height, small.get(), 4 * width, width,
                      height, libyuv::kFilterBox);
    libyuv::ARGBScale(small.get(), 4 * width, width, height, p.data(), p.stride, rect.width,
                      rect.height, libyuv::kFilterNone);
  };
}

Work greyNv(const TestPicture& p) {
  return [&p] { libyuv::SetPlane(p.chroma(), p.stride, p.size.width, p.size.height / 2, 127); };
}

// To RGB, a step where there is one, through the tables and back, by row pairs.
Work throughRgb(const TestPicture& p, const RowPairStep& step) {
  const int stride = 4 * p.size.width;
  const SharedBuffer rows = makeBuffer(2 * static_cast<std::size_t>(stride));
  return [=, &p, table = interleavedTable()] {
    for (int y = 0; y < p.size.height; y += 2) {
      std::uint8_t* const luma = p.data() + static_cast<std::ptrdiff_t>(y) * p.stride;
      std::uint8_t* const chroma = p.chroma() + static_cast<std::ptrdiff_t>(y / 2) * p.stride;
      libyuv::NV12ToARGB(luma, p.stride, chroma, p.stride, rows.get(), stride, p.size.width, 2);
      if (step) step(rows.get(), y);
      libyuv::RGBColorTable(rows.get(), stride, table.get(), 0, 0, p.size.width, 2);
      libyuv::ARGBToNV12(rows.get(), stride, luma, p.stride, chroma, p.stride, p.size.width, 2);
    }
  };
}

Work curvesNv(const TestPicture& p) { return throughRgb(p, nullptr); }
Work mixAndCurvesNv(const TestPicture& p) { return throughRgb(p, mixRows(p)); }
Work textureAndCurvesNv(const TestPicture& p) { return throughRgb(p, multiplyRows(p)); }

}  // namespace

void addLibyuvCases() {
  addPeerCase("libyuv", "grey", kRgba, grey);
  addPeerCase("libyuv", "curves", kRgba, curves);
  addPeerCase("libyuv", "mix-curves", kRgba, mixAndCurves);
  addPeerCase("libyuv", "texture-curves", kRgba, textureAndCurves);
  addPeerCase("libyuv", "blend", kRgba, blend);
  addPeerCase("libyuv", "resize1", kRgba, resizeOneChannel);
  addPeerCase("libyuv", "resize4", kRgba, resizeFourChannels);
  addPeerCase("libyuv", "shrink-blur-grow", kRgba, shrinkBlurGrow);
  addPeerCase("libyuv", "pixelize", kRgba, pixelize);
  addPeerCase("libyuv", "grey", kNv12, greyNv);
  addPeerCase("libyuv", "curves", kNv12, curvesNv);
  addPeerCase("libyuv", "mix-curves", kNv12, mixAndCurvesNv);
  addPeerCase("libyuv", "texture-curves", kNv12, textureAndCurvesNv);
  addPeerCase("libyuv", "blend", kNv12, blend);
}

}  // namespace lumora::bench
