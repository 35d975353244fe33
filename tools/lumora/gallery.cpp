// lumora gallery: one sheet of a picture under many looks.
#include <algorithm>

#include "commands.h"
#include "contact_sheet.h"
#include "errors.h"
#include "example_settings.h"
#include "filter.h"
#include "image_library.h"
#include "output.h"
#include "photograph.h"

namespace lumora::tool {
namespace {

using vips::VImage;

// Cells are small; looks are applied near that size, which is fast and shows what the sheet shows.
constexpr int kCellWidth = 360;

struct GallerySettings {
  std::vector<const Mode*> looks;
  std::vector<int> strengths;
  int columns = 0;
  int quality = kDefaultQuality;
  bool singleThread = false;
};

VImage imageOf(const FilterImage& picture) {
  // Images are evaluated late: the caller's pixels may be gone by then.
  const VImage rgba = VImage(vips_image_new_from_memory_copy(
                                 picture.picData, std::size_t{4} * picture.width * picture.height,
                                 static_cast<int>(picture.width), static_cast<int>(picture.height),
                                 4, VIPS_FORMAT_UCHAR))
                          .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
  return rgba.extract_band(0, VImage::option()->set("n", 3));
}

// The picture at twice the cell's size, or as it is where it is smaller.
std::vector<std::uint8_t> preparedPixels(Photograph& photograph, Size& size) {
  VImage image = imageOf(photograph.image());
  if (image.width() > 2 * kCellWidth) image = image.thumbnail_image(2 * kCellWidth);
  image = image.cast(VIPS_FORMAT_UCHAR).bandjoin(255);
  size = {static_cast<unsigned>(image.width()), static_cast<unsigned>(image.height())};
  requirePictureSize(size);
  std::size_t bytes = 0;
  const VipsBytes pixels(static_cast<std::uint8_t*>(image.write_to_memory(&bytes)));
  return {pixels.get(), pixels.get() + bytes};
}

std::string labelOf(const Mode& mode, int strength) {
  const bool plain = strength == 16 || mode.strength == StrengthUse::kUnused;
  return plain ? text(mode.number, "  ", mode.name)
               : text(mode.number, "  ", mode.name, "  ", strength);
}

std::vector<SheetCell> drawCells(const GallerySettings& gallery, const ResourceSettings& resources,
                                 const std::vector<std::uint8_t>& rgba, Size size) {
  std::vector<SheetCell> cells;
  for (const Mode* mode : gallery.looks) {
    for (const int strength : gallery.strengths) {
      std::vector<std::uint8_t> pixels = rgba;
      const FilterImage picture{LUMORA_FORMAT_RGBA, pixels.data(), size.width, size.height,
                                static_cast<std::int32_t>(4 * size.width)};
      const LookSettings settings =
          exampleSettings(*mode, strength, gallery.singleThread, rgba, size);
      Filter(resources, settings, size).apply(settings, picture);
      cells.push_back({labelOf(*mode, strength), imageOf(picture)});
    }
  }
  return cells;
}

VImage drawSheet(const GallerySettings& gallery, const ResourceSettings& resources,
                 const std::string& path) {
  try {
    Photograph photograph = Photograph::read(path);
    Size size;
    const std::vector<std::uint8_t> rgba = preparedPixels(photograph, size);
    const int cellHeight =
        std::max(64, kCellWidth * static_cast<int>(size.height) / static_cast<int>(size.width));
    return contactSheet(drawCells(gallery, resources, rgba, size), gallery.columns, kCellWidth,
                        cellHeight);
  } catch (const PictureError& error) {
    throw PictureError(text(path, ": ", error.what()));
  }
}

CommandLine commandLine(GallerySettings& gallery, ResourceSettings& resources) {
  return {
      "lumora gallery [options] IN OUT",
      "Draws one labelled sheet of a picture under all looks: the quickest way to choose one.\n",
      {{"Sheet",
        {{"looks", 'l', "NAME,...", "these looks only, in this order",
          [&](const std::string& v) {
            gallery.looks.clear();
            for (const std::string& name : splitAtCommas(v)) {
              gallery.looks.push_back(&findMode(name));
            }
          }},
         {"strengths", 's', "N,...", "one picture per strength 0..32; default 16",
          [&](const std::string& v) {
            gallery.strengths.clear();
            for (const std::string& number : splitAtCommas(v)) {
              gallery.strengths.push_back(parseStrength(number));
            }
          }},
         {"columns", 'c', "N", "pictures in a row; default 5, or one per strength",
          [&](const std::string& v) { gallery.columns = parseInteger(v, 1, 50); }},
         {"quality", 0, "1..100", "of jpg, webp, avif and heic; default 92",
          [&](const std::string& v) { gallery.quality = parseInteger(v, 1, 100); }},
         {"single-thread", 0, nullptr, "filter without starting threads",
          raise(gallery.singleThread)}}},
       resourceOptions(resources)},
      "  lumora gallery photo.jpg sheet.jpg\n"
      "  lumora gallery --looks xpro2,lofi --strengths 4,16,32 photo.jpg sheet.png\n"};
}

}  // namespace

int galleryCommand(int argc, char** argv) {
  GallerySettings gallery;
  ResourceSettings resources;
  const auto operands = readCommandLine(commandLine(gallery, resources), argc, argv);
  if (!operands) return kExitDone;
  if (operands->size() != 2) throw UsageError("an input and an output picture are needed");
  if (gallery.looks.empty()) {
    for (const Mode& mode : modes()) gallery.looks.push_back(&mode);
  }
  if (gallery.strengths.empty()) gallery.strengths = {16};
  if (gallery.columns == 0) {
    gallery.columns = gallery.strengths.size() > 1 ? static_cast<int>(gallery.strengths.size()) : 5;
  }

  requireWritableName(operands->at(1));

  startImageLibrary(argv[0], false);
  // The library writes lines of its own there.
  takeStandardOutput(false);
  const VImage sheet = drawSheet(gallery, resources, operands->front());
  writeImage(sheet, operands->at(1), gallery.quality);
  return kExitDone;
}

}  // namespace lumora::tool
