// lumora gallery: one sheet of a picture under many looks.
#include <algorithm>

#include "commands.h"
#include "contact_sheet.h"
#include "errors.h"
#include "example_settings.h"
#include "filter.h"
#include "formats.h"
#include "image_library.h"
#include "output.h"
#include "photograph.h"
#include "standard_descriptors.h"

namespace lumora::tool {
namespace {

using vips::VImage;

// Cells are small; looks are applied near that size, which is fast and shows what the sheet shows.
constexpr int kCellWidth = 360;
constexpr const char* kOriginal = "original";

struct GallerySettings {
  std::vector<const Mode*> looks;  // null is the picture as it is
  std::vector<Strength> strengths;
  int columns = 0;
  std::optional<std::uint32_t> seed;
  int quality = kDefaultQuality;
  bool singleThread = false;
  bool force = false;
  bool original = false;
};

// The picture at twice the cell's size, or as it is where it is smaller.
VImage preparedPicture(const std::string& path) {
  const Photograph photograph = Photograph::read(path);
  VImage image = photograph.colours();
  if (image.width() > 2 * kCellWidth) image = image.thumbnail_image(2 * kCellWidth);
  requirePictureSize({static_cast<unsigned>(image.width()), static_cast<unsigned>(image.height())});
  return fromRgba(toRgba(image.cast(VIPS_FORMAT_UCHAR)), false);
}

std::string labelOf(const Mode& mode, const Strength& strength) {
  const bool plain =
      strength.levelOn(&mode) == LUMORA_FULL_STRENGTH || mode.strength == StrengthUse::kUnused;
  return plain ? text(mode.number, "  ", mode.name)
               : text(mode.number, "  ", mode.name, "  ", strength.name());
}

std::vector<const Mode*> parseLooks(const std::string& value) {
  std::vector<const Mode*> looks;
  for (const std::string& name : splitAtCommas(value)) {
    looks.push_back(lowerCase(name) == kOriginal ? nullptr : &findMode(name));
  }
  return looks;
}

std::vector<SheetCell> drawCells(const GallerySettings& gallery, const ResourceSettings& resources,
                                 const VImage& picture) {
  Filter filter(resources);
  std::vector<SheetCell> cells;
  for (const Mode* mode : gallery.looks) {
    if (mode == nullptr) {
      cells.push_back({kOriginal, picture});
      continue;
    }
    for (const Strength& strength : gallery.strengths) {
      const VImage rgba = toRgba(picture);
      const FilterImage pixels = pixelsOf(rgba);
      LookSettings settings =
          exampleSettings(*mode, strength.levelOn(mode), gallery.singleThread, pixels);
      settings.values.seed = gallery.seed;
      filter.apply(settings, pixels);
      cells.push_back({labelOf(*mode, strength), fromRgba(rgba, false)});
    }
  }
  return cells;
}

VImage drawSheet(const GallerySettings& gallery, const ResourceSettings& resources,
                 const std::string& path) {
  try {
    const VImage picture = preparedPicture(path);
    const int cellHeight = std::max(64, kCellWidth * picture.height() / picture.width());
    return contactSheet(drawCells(gallery, resources, picture), gallery.columns, kCellWidth,
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
        {{"looks", 'l', "NAME,...",
          "these looks only, in this order; 'original' is the picture as\nit is",
          [&](const std::string& v) { gallery.looks = parseLooks(v); }},
         {"original", 0, nullptr, "begin with the picture as it is", raise(gallery.original)},
         {"strengths", 's', "N,...", "one picture per strength 0..32 or P%; default 16",
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
         seedOption(gallery.seed),
         forceOption(gallery.force),
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
    for (const Mode& mode : kModes) gallery.looks.push_back(&mode);
  }
  if (gallery.original) gallery.looks.insert(gallery.looks.begin(), nullptr);
  if (gallery.strengths.empty()) gallery.strengths = {Strength{}};
  if (gallery.columns == 0) {
    gallery.columns = gallery.strengths.size() > 1 ? static_cast<int>(gallery.strengths.size()) : 5;
  }

  const std::string& input = operands->at(0);
  const std::string& path = operands->at(1);
  const std::string suffix = requireWritableName(path);
  requireOtherFile(input, path);

  startImageLibrary(argv[0], false);
  // The library writes lines of its own there.
  takeStandardOutput(false);
  Output output(path, {.force = gallery.force});
  const std::vector<std::uint8_t> file =
      encode(drawSheet(gallery, resources, input), {}, suffix, gallery.quality);
  output.finish(file.data(), file.size());
  return kExitDone;
}

}  // namespace lumora::tool
