// lumora lut: looks as tables of colours for other programs.
#include <filesystem>
#include <optional>

#include "commands.h"
#include "contact_sheet.h"
#include "errors.h"
#include "filter.h"
#include "image_library.h"
#include "look_lut.h"
#include "lut/cube_file.h"
#include "lut_picture.h"
#include "output.h"
#include "photograph.h"
#include "scene/sample_scene.h"

namespace lumora::tool {
namespace {

namespace fs = std::filesystem;
using vips::VImage;

enum class Kind { kCube, kHald, kTiles };

struct LutSettings {
  LookSettings look;
  ResourceSettings resources;
  std::optional<Kind> kind;
  std::optional<int> size;
  std::string folder;  // --all
  bool force = false;
};

Kind parseKind(const std::string& value) {
  if (value == "cube") return Kind::kCube;
  if (value == "hald") return Kind::kHald;
  if (value == "tiles") return Kind::kTiles;
  throw UsageError(text("'", value, "' is not one of cube, hald and tiles"));
}

CommandLine commandLine(LutSettings& s) {
  return {
      "lumora lut --look NAME [options] OUT\n"
      "lumora lut --all DIR [options]",
      "Writes a look as a table of colours for editors, cameras and streaming programs. Looks "
      "that\n"
      "depend on more than the colour of a pixel are refused. 'lumora apply --lut' goes the other\n"
      "way.\n",
      {{"Table",
        {{"look", 'l', "NAME", "look by name or number",
          [&s](const std::string& v) { s.look.mode = &findMode(v); }},
         {"all", 0, "DIR", "every look that can be one, and a sheet of them, into this folder",
          keep(s.folder)},
         {"strength", 's', "0..32|P%", "how strong; default 16, the full effect, or 100%",
          [&s](const std::string& v) { s.look.strength = parseStrength(v); }},
         {"to", 0, "KIND",
          "cube: a .cube file; hald: a Hald picture; tiles: the 512 x 512\n"
          "picture of 8 x 8 tiles that streaming programs read;\n"
          "default: cube for names in .cube, otherwise hald",
          [&s](const std::string& v) { s.kind = parseKind(v); }},
         {"size", 0, "N", "of a cube 2..129, default 33; level of a Hald picture 2..16,\ndefault 8",
          [&s](const std::string& v) { s.size = parseInteger(v, 2, 129); }},
         forceOption(s.force)}},
       resourceOptions(s.resources)},
      "  lumora lut --look fugu fugu.cube\n"
      "  lumora lut --look rixi --strength 24 --size 65 rixi.cube\n"
      "  lumora lut --look valencia hald.png\n"
      "  lumora lut --all luts --to tiles\n"};
}

// Of the table's side.
int sizeOf(const LutSettings& settings, Kind kind) {
  switch (kind) {
    case Kind::kCube: return settings.size.value_or(33);
    case Kind::kTiles:
      if (settings.size) throw UsageError("--size is not for tiles, whose size is fixed");
      return kTilesSize;
    case Kind::kHald: break;
  }
  const int level = settings.size.value_or(8);
  if (level <= kHighestHaldLevel) return level * level;
  throw UsageError(
      text("--size of a Hald picture is its level, ", kLowestHaldLevel, "..", kHighestHaldLevel));
}

void requireTable(const Mode& mode) {
  const char* const reason = reasonAgainstLut(mode);
  if (reason == nullptr) return;
  throw UsageError(text("the look ", mode.name, " cannot be a table of colours: ", reason));
}

void writePicture(const VImage& picture, const std::string& suffix, Output& output) {
  const std::vector<std::uint8_t> file = encode(picture, {}, suffix, kDefaultQuality);
  output.finish(file.data(), file.size());
}

void write(const LutSettings& settings, const Mode& mode, Kind kind, const std::string& path) {
  LookSettings look = settings.look;
  look.mode = &mode;
  look.values.strength = look.strength.levelOn(&mode);
  const lut::Lut lut = LookColours(settings.resources, look).table(sizeOf(settings, kind));
  Output output(path, {.force = settings.force});
  if (kind != Kind::kCube) {
    const VImage picture = kind == Kind::kHald ? haldPicture(lut) : tilesPicture(lut);
    return writePicture(picture, ".png", output);
  }
  const std::string file = lut::writeCube(
      lut, text("Lumora ", mode.name),
      {text("Look: ", mode.name, " - ", mode.summary),
       text("Strength: ", look.values.strength, " (", describe(mode.strength), ")")});
  output.finish(file.data(), file.size());
}

SheetCell cellOf(const LutSettings& settings, const Mode& mode, Size size) {
  LookSettings look = settings.look;
  look.mode = &mode;
  look.values.strength = look.strength.levelOn(&mode);
  std::vector<std::uint8_t> scene = drawSampleScene(size);
  const VImage rgba =
      toRgba(VImage::new_from_memory(scene.data(), scene.size(), static_cast<int>(size.width),
                                     static_cast<int>(size.height), 4, VIPS_FORMAT_UCHAR));
  Filter(settings.resources).apply(look, pixelsOf(rgba));
  return {mode.name, fromRgba(rgba, false)};
}

void writeAll(const LutSettings& settings) {
  constexpr Size kCell{360, 270};
  const Kind kind = settings.kind.value_or(Kind::kCube);
  std::error_code error;
  fs::create_directories(settings.folder, error);
  if (error) {
    throw PictureError(text(settings.folder, ": cannot be made a folder: ", error.message()));
  }
  std::vector<SheetCell> cells;
  for (const Mode& mode : kModes) {
    if (reasonAgainstLut(mode) != nullptr) continue;
    const fs::path file = text(mode.name, kind == Kind::kCube ? ".cube" : ".png");
    write(settings, mode, kind, (settings.folder / file).string());
    cells.push_back(cellOf(settings, mode, kCell));
  }
  Output output((fs::path(settings.folder) / "sheet.jpg").string(), {.force = settings.force});
  writePicture(contactSheet(cells, 4, kCell.width, kCell.height), ".jpg", output);
}

Kind kindOf(const LutSettings& settings, const std::string& path) {
  const std::string name = lowerCase(path);
  const bool isCube = name.ends_with(".cube"), isPng = name.ends_with(".png");
  const Kind kind = settings.kind.value_or(isCube ? Kind::kCube : Kind::kHald);
  if (kind == Kind::kCube ? !isPng : isPng) return kind;
  throw UsageError(text(path, ": a table is written to a name in .cube or .png, as --to says"));
}

}  // namespace

int lutCommand(int argc, char** argv) {
  LutSettings settings;
  const auto operands = readCommandLine(commandLine(settings), argc, argv);
  if (!operands) return kExitDone;
  const bool isAll = !settings.folder.empty();
  if (isAll == (settings.look.mode != nullptr))
    throw UsageError("either --look or --all is needed");
  if (operands->size() != (isAll ? 0 : 1)) {
    throw UsageError(isAll ? "--all takes no output beside its folder" : "one output is needed");
  }
  const Kind kind =
      isAll ? settings.kind.value_or(Kind::kCube) : kindOf(settings, operands->front());
  sizeOf(settings, kind);
  if (!isAll) requireTable(*settings.look.mode);

  startImageLibrary(argv[0], false);
  if (isAll) {
    writeAll(settings);
  } else {
    write(settings, *settings.look.mode, kind, operands->front());
  }
  return kExitDone;
}

}  // namespace lumora::tool
