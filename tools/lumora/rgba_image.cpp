#include "rgba_image.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

#include "errors.h"
#include "pixel_blocks.h"

namespace lumora::tool {
namespace {

using vips::VImage;

// Rows computed at a time: what they are made of stays in the cache.
constexpr int kStripRows = 16;

struct Unref {
  void operator()(void* object) const { g_object_unref(object); }
};

void check(int result) {
  if (result != 0) throw vips::VError();
}

// Pixels but the last are moved four bytes at a time, the fourth of which belongs to the next one.
void addAlpha(const std::uint8_t* rgb, std::uint8_t* rgba, int pixels) {
  constexpr std::uint8_t kOpaque[4] = {0, 0, 0, 255};
  std::uint32_t opaque, pixel;
  std::memcpy(&opaque, kOpaque, sizeof opaque);
  for (int i = 0; i + 1 < pixels; ++i, rgb += 3, rgba += 4) {
    std::memcpy(&pixel, rgb, sizeof pixel);
    pixel |= opaque;
    std::memcpy(rgba, &pixel, sizeof pixel);
  }
  std::copy_n(rgb, 3, rgba);
  rgba[3] = 255;
}

void removeAlpha(const std::uint8_t* rgba, std::uint8_t* rgb, int pixels) {
  for (int i = 0; i + 1 < pixels; ++i, rgba += 4, rgb += 3) std::memcpy(rgb, rgba, 4);
  std::copy_n(rgba, 3, rgb);
}

void computeRgba(const VImage& image, std::uint8_t* rgba) {
  check(vips_image_pio_input(image.get_image()));
  const std::unique_ptr<VipsRegion, Unref> region(vips_region_new(image.get_image()));
  const std::size_t rowBytes = std::size_t{4} * image.width();
  for (int y = 0; y < image.height(); y += kStripRows) {
    const int end = std::min(y + kStripRows, image.height());
    const VipsRect strip{0, y, image.width(), end - y};
    check(vips_region_prepare(region.get(), &strip));
    for (int row = y; row < end; ++row, rgba += rowBytes) {
      const std::uint8_t* const pixels = VIPS_REGION_ADDR(region.get(), 0, row);
      if (image.bands() == 4) {
        std::memcpy(rgba, pixels, rowBytes);
      } else {
        addAlpha(pixels, rgba, image.width());
      }
    }
  }
}

// What colours without alpha are read from.
struct Source {
  VImage rgba;
  bool isConsumed;
  int firstRow = 0;  // of those that are still there
};

int generateColours(VipsRegion* out, void*, void* a, void*, gboolean*) {
  auto& source = *static_cast<Source*>(a);
  const FilterImage pixels = pixelsOf(source.rgba);
  const VipsRect& area = out->valid;
  const int end = VIPS_RECT_BOTTOM(&area);
  if (area.top < source.firstRow) {
    vips_error("pixels", "are read twice");
    return -1;
  }
  const auto rowAt = [&pixels](int y) {
    return pixels.picData + std::ptrdiff_t{pixels.stride} * y;
  };
  for (int y = area.top; y < end; ++y) {
    removeAlpha(rowAt(y) + std::ptrdiff_t{4} * area.left, VIPS_REGION_ADDR(out, area.left, y),
                area.width);
  }
  if (source.isConsumed) {
    source.firstRow = end;
    dropPixelsBefore(pixels.picData, rowAt(end));
  }
  return 0;
}

// fields: an image of the same size, whose header and metadata it takes.
VImage withoutAlpha(const VImage& rgba, const VImage& fields, bool isConsumed) {
  VipsImage* const image = vips_image_new();
  const VImage owner(image);
  auto* const source = new Source{rgba, isConsumed};
  g_object_set_data_full(G_OBJECT(image), "lumora-source", source,
                         [](void* data) { delete static_cast<Source*>(data); });
  check(vips_image_pipelinev(image, VIPS_DEMAND_STYLE_THINSTRIP, fields.get_image(), nullptr));
  image->Bands = 3;
  image->Type = VIPS_INTERPRETATION_sRGB;
  // One worker asks for whole strips in their order.
  if (isConsumed) vips_image_set_int(image, VIPS_META_CONCURRENCY, 1);
  check(vips_image_generate(image, nullptr, generateColours, nullptr, source, nullptr));
  return owner;
}

}  // namespace

VImage toRgba(const VImage& image) {
  if (image.format() != VIPS_FORMAT_UCHAR || (image.bands() != 3 && image.bands() != 4)) {
    throw PictureError("cannot be brought to red, green, blue and alpha of eight bits");
  }
  const std::size_t bytes = std::size_t{4} * image.width() * image.height();
  std::uint8_t* const block = takePixelBlock(bytes);
  if (block == nullptr) throw std::bad_alloc();
  VImage rgba =
      VImage::new_from_memory(block, bytes, image.width(), image.height(), 4, VIPS_FORMAT_UCHAR);
  g_object_set_data_full(G_OBJECT(rgba.get_image()), "lumora-block", block,
                         [](void* data) { givePixelBlock(static_cast<std::uint8_t*>(data)); });
  computeRgba(image, block);
  return rgba;
}

FilterImage pixelsOf(const VImage& rgba) {
  return {LUMORA_FORMAT_RGBA, static_cast<std::uint8_t*>(const_cast<void*>(rgba.data())),
          static_cast<unsigned>(rgba.width()), static_cast<unsigned>(rgba.height()),
          static_cast<std::int32_t>(4 * rgba.width())};
}

VImage fromRgba(const VImage& rgba, bool withAlpha) {
  if (!withAlpha) return withoutAlpha(rgba, rgba, false);
  return rgba.copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
}

VImage consumeRgba(const VImage& rgba, const VImage& fields) {
  return withoutAlpha(rgba, fields, true);
}

}  // namespace lumora::tool
