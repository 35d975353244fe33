#include <vips/vips.h>

#include <initializer_list>
#include <memory>
#include <stdexcept>

#include "peers.h"

namespace lumora::bench {
namespace {

using Work = std::function<void()>;

struct Unref {
  void operator()(VipsImage* image) const { g_object_unref(image); }
};
using Image = std::shared_ptr<VipsImage>;

Image owned(VipsImage* image) {
  if (image == nullptr) throw std::runtime_error(vips_error_buffer());
  return Image(image, Unref());
}

// Calls a vips operation whose output is its first trailing argument's target.
template <class Operation>
Image run(const Operation& operation) {
  VipsImage* out = nullptr;
  if (operation(&out) != 0) throw std::runtime_error(vips_error_buffer());
  return owned(out);
}

// The picture's own bytes. vips works lazily: a pipeline runs when its result is written.
Image pictureImage(const TestPicture& p) {
  return owned(vips_image_new_from_memory(p.data(), p.bytes, p.size.width, p.size.height, 4,
                                          VIPS_FORMAT_UCHAR));
}

void compute(const Image& result) {
  std::size_t bytes = 0;
  void* const pixels = vips_image_write_to_memory(result.get(), &bytes);
  if (pixels == nullptr) throw std::runtime_error(vips_error_buffer());
  g_free(pixels);
}

Image asBytes(const Image& in) {
  return run([&](VipsImage** out) { return vips_cast_uchar(in.get(), out, nullptr); });
}

Image matrixImage(std::initializer_list<double> values, int side) {
  return owned(vips_image_new_matrix_from_array(side, side, std::data(values),
                                                static_cast<int>(values.size())));
}

Image tableImage() {
  const ChannelTables& tables = channelTables();
  std::uint8_t entries[4 * 256];
  for (int i = 0; i < 256; ++i) {
    entries[4 * i] = tables.r[i];
    entries[4 * i + 1] = tables.g[i];
    entries[4 * i + 2] = tables.b[i];
    entries[4 * i + 3] = static_cast<std::uint8_t>(i);
  }
  return owned(
      vips_image_new_from_memory_copy(entries, sizeof entries, 256, 1, 4, VIPS_FORMAT_UCHAR));
}

Image throughTables(const Image& in, const Image& table) {
  return run([&](VipsImage** out) { return vips_maplut(in.get(), out, table.get(), nullptr); });
}

Work grey(const TestPicture& p) {
  constexpr double r = 19.0 / 64, g = 38.0 / 64, b = 7.0 / 64;
  const Image weights = matrixImage({r, g, b, 0, r, g, b, 0, r, g, b, 0, 0, 0, 0, 1}, 4);
  return [&p, weights] {
    const Image in = pictureImage(p);
    compute(asBytes(
        run([&](VipsImage** out) { return vips_recomb(in.get(), out, weights.get(), nullptr); })));
  };
}

Work curves(const TestPicture& p) {
  return [&p, table = tableImage()] { compute(throughTables(pictureImage(p), table)); };
}

Work mixAndCurves(const TestPicture& p) {
  double mix[16] = {};
  for (int i = 0; i < 9; ++i) mix[4 * (i / 3) + i % 3] = kChannelMix[i / 3][i % 3] / 128.0;
  mix[15] = 1;
  const Image matrix = owned(vips_image_new_matrix_from_array(4, 4, mix, 16));
  return [&p, matrix, table = tableImage()] {
    const Image in = pictureImage(p);
    const Image mixed = asBytes(
        run([&](VipsImage** out) { return vips_recomb(in.get(), out, matrix.get(), nullptr); }));
    compute(throughTables(mixed, table));
  };
}

Image scaledBy(const Image& in, double factor) {
  return run([&](VipsImage** out) { return vips_linear1(in.get(), out, factor, 0.0, nullptr); });
}

Work blend(const TestPicture& p) {
  return [&p] {
    const Image filtered = scaledBy(pictureImage(p), kBlendShare);
    const Image original = owned(vips_image_new_from_memory(p.original(), p.bytes, p.size.width,
                                                            p.size.height, 4, VIPS_FORMAT_UCHAR));
    const Image copy = scaledBy(original, 1 - kBlendShare);
    compute(asBytes(
        run([&](VipsImage** out) { return vips_add(filtered.get(), copy.get(), out, nullptr); })));
  };
}

Work resizeOneChannel(const TestPicture& p) {
  const double across = 1.0 * p.size.width / kTextureSize.width;
  const double down = 1.0 * p.size.height / kTextureSize.height;
  return [&p, across, down] {
    const Image texture = owned(
        vips_image_new_from_memory(p.data(), static_cast<std::size_t>(kTextureSize.pixels()),
                                   kTextureSize.width, kTextureSize.height, 1, VIPS_FORMAT_UCHAR));
    compute(run([&](VipsImage** out) {
      return vips_resize(texture.get(), out, across, "vscale", down, "kernel", VIPS_KERNEL_NEAREST,
                         nullptr);
    }));
  };
}

Work gauss(const TestPicture& p) {
  return [&p] {
    const Image in = pictureImage(p);
    compute(
        run([&](VipsImage** out) { return vips_gaussblur(in.get(), out, kBlurSigma, nullptr); }));
  };
}

Work pixelize(const TestPicture& p) {
  const Size rect = mosaicRect(p.size);
  return [&p, rect] {
    const Image in = pictureImage(p);
    const Image region = run([&](VipsImage** out) {
      return vips_extract_area(in.get(), out, 0, 0, rect.width, rect.height, nullptr);
    });
    const Image small = run([&](VipsImage** out) {
      return vips_shrink(region.get(), out, kMosaicBlock, kMosaicBlock, nullptr);
    });
    compute(run([&](VipsImage** out) {
      return vips_zoom(small.get(), out, kMosaicBlock, kMosaicBlock, nullptr);
    }));
  };
}

}  // namespace

void addVipsCases() {
  if (vips_init("lumora-bench") != 0) return;
  vips_concurrency_set(1);
  // Without this the second round would be answered from the first one's result.
  vips_cache_set_max(0);
  addPeerCase("vips", "grey", kRgba, grey);
  addPeerCase("vips", "curves", kRgba, curves);
  addPeerCase("vips", "mix-curves", kRgba, mixAndCurves);
  addPeerCase("vips", "blend", kRgba, blend);
  addPeerCase("vips", "resize1", kRgba, resizeOneChannel);
  addPeerCase("vips", "gauss", kRgba, gauss);
  addPeerCase("vips", "pixelize", kRgba, pixelize);
}

}  // namespace lumora::bench
