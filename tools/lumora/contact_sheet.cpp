#include "contact_sheet.h"

#include <algorithm>

namespace lumora::tool {
namespace {

using vips::VImage;

constexpr int kMargin = 12;
constexpr int kLabelHeight = 34;
const std::vector<double> kBackground{24, 24, 26};
const std::vector<double> kInk{236, 236, 232};

VImage canvas(int width, int height, const std::vector<double>& colour) {
  return VImage::black(width, height)
      .new_from_image(colour)
      .cast(VIPS_FORMAT_UCHAR)
      .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
}

// Grown pictures repeat their pixels: a texture of 17 x 12 shall show them.
VImage fitted(const VImage& picture, int width, int height) {
  const double scale = std::min(width / double(picture.width()), height / double(picture.height()));
  if (scale < 1) {
    return picture.thumbnail_image(width, VImage::option()->set("height", height));
  }
  return picture.resize(std::max(1.0, static_cast<double>(static_cast<int>(scale))),
                        VImage::option()->set("kernel", VIPS_KERNEL_NEAREST));
}

// An image of text ends where its ink does, so labels without a "g" would stand lower than others.
// Letters of full height and depth that nobody sees make all of one height.
VImage labelImage(const std::string& label, int width) {
  const std::string unseen = "<span alpha='1'>|</span>";
  const VImage strokes =
      VImage::text((unseen + label + unseen).c_str(),
                   VImage::option()->set("font", "sans 15")->set("width", width)->set("dpi", 84));
  return strokes.ifthenelse(canvas(strokes.width(), strokes.height(), kInk),
                            canvas(strokes.width(), strokes.height(), kBackground),
                            VImage::option()->set("blend", true));
}

VImage cellImage(const SheetCell& cell, int width, int height) {
  const VImage picture = fitted(cell.picture, width, height);
  const VImage label = labelImage(cell.label, width);
  return canvas(width, height + kLabelHeight, kBackground)
      .insert(picture, (width - picture.width()) / 2, (height - picture.height()) / 2)
      .insert(label, std::max(0, (width - label.width()) / 2),
              height + std::max(0, (kLabelHeight - label.height()) / 2));
}

}  // namespace

VImage contactSheet(const std::vector<SheetCell>& cells, int columns, int cellWidth,
                    int cellHeight) {
  std::vector<VImage> images;
  for (const SheetCell& cell : cells) images.push_back(cellImage(cell, cellWidth, cellHeight));
  const VImage joined = VImage::arrayjoin(images, VImage::option()
                                                      ->set("across", columns)
                                                      ->set("shim", kMargin)
                                                      ->set("background", kBackground));
  return joined.embed(
      kMargin, kMargin, joined.width() + 2 * kMargin, joined.height() + 2 * kMargin,
      VImage::option()->set("extend", VIPS_EXTEND_BACKGROUND)->set("background", kBackground));
}

}  // namespace lumora::tool
