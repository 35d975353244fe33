// lumora pack: texture packs made, checked, shown and taken apart.
#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include "commands.h"
#include "contact_sheet.h"
#include "default_pack/default_pack.h"
#include "errors.h"
#include "image_library.h"
#include "options.h"
#include "output.h"
#include "photograph.h"
#include "resources/texture_pack.h"
#include "words.h"

namespace lumora::tool {
namespace {

using vips::VImage;

std::vector<std::string> slotNames() {
  std::vector<std::string> names;
  for (const PackImage& image : kPackImages) names.emplace_back(image.name);
  return names;
}

std::string joinedSlotNames() {
  std::string all;
  for (const std::string& name : slotNames()) all += text(all.empty() ? "" : ", ", name);
  return all;
}

const PackImage& findSlot(const std::string& name) {
  for (const PackImage& image : kPackImages) {
    if (lowerCase(name) == image.name) return image;
  }
  throw UsageError(text("there is no slot '", name, "'", didYouMean(name, slotNames()),
                        "; the slots are ", joinedSlotNames()));
}

// The first thing wrong with a pack, or nothing.
std::string faultOf(const std::vector<std::uint8_t>& pack) {
  if (pack.size() != kPackBytes) {
    return text("has ", pack.size(), " bytes instead of ", kPackBytes);
  }
  switch (findPackFault(pack.data())) {
    case PackFault::kSizeBytes:
      return "does not begin with the bytes 04 00 04 00 of a texture pack";
    case PackFault::kMark: return "lacks the mark 01 04 01 01 00 04 at byte 10";
    case PackFault::kNone: break;
  }
  return "";
}

std::vector<std::uint8_t> readPack(const std::string& path) {
  struct stat status;
  if (::stat(path.c_str(), &status) != 0) {
    throw ResourceError(
        text(path, ": ", errno == ENOENT ? "there is no such file" : std::strerror(errno)));
  }
  if (!S_ISREG(status.st_mode)) throw ResourceError(text(path, ": is not a regular file"));
  // A longer file need not be read to the end to be refused.
  std::vector<std::uint8_t> pack(
      std::min<std::size_t>(static_cast<std::size_t>(status.st_size), kPackBytes + 1));
  std::ifstream file(path, std::ios::binary);
  file.read(reinterpret_cast<char*>(pack.data()), static_cast<std::streamsize>(pack.size()));
  if (!file) throw ResourceError(text(path, ": cannot be read"));
  if (static_cast<std::uint64_t>(status.st_size) != pack.size()) {
    throw ResourceError(text(path, ": has ", status.st_size, " bytes instead of ", kPackBytes));
  }
  const std::string fault = faultOf(pack);
  if (!fault.empty()) throw ResourceError(text(path, ": ", fault));
  return pack;
}

// The user's picture at the slot's size and number of channels.
void fillSlot(std::vector<std::uint8_t>& pack, const PackImage& slot, const std::string& path) {
  VImage image = readImage(path);
  if (image.has_alpha()) image = image.flatten();
  image = image.thumbnail_image(
      slot.size.width,
      VImage::option()->set("height", slot.size.height)->set("size", VIPS_SIZE_FORCE));
  if (slot.bytesPerPixel == 1) image = image.colourspace(VIPS_INTERPRETATION_B_W).extract_band(0);
  image = image.cast(VIPS_FORMAT_UCHAR);
  std::size_t bytes = 0;
  const VipsBytes pixels(static_cast<std::uint8_t*>(image.write_to_memory(&bytes)));
  if (bytes != slot.bytes()) throw PictureError(text(path, ": could not be fitted to the slot"));
  std::copy_n(pixels.get(), bytes, pack.begin() + slot.offset);
}

struct Replacement {
  const PackImage* slot;
  std::string path;
};

Replacement parseReplacement(const std::string& value) {
  const std::size_t equals = value.find('=');
  if (equals == value.npos) throw UsageError(text("'", value, "' is not of the form NAME=PICTURE"));
  return {&findSlot(value.substr(0, equals)), value.substr(equals + 1)};
}

VImage slotImage(const std::vector<std::uint8_t>& pack, const PackImage& slot) {
  const VImage image = VImage::new_from_memory(const_cast<std::uint8_t*>(pack.data()) + slot.offset,
                                               slot.bytes(), slot.size.width, slot.size.height,
                                               slot.bytesPerPixel, VIPS_FORMAT_UCHAR);
  return (slot.bytesPerPixel == 1 ? VImage::bandjoin({image, image, image}) : image)
      .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
}

std::vector<std::uint8_t> defaultPack() {
  std::vector<std::uint8_t> pack(kPackBytes);
  drawDefaultPack(pack.data());
  return pack;
}

int create(int argc, char** argv) {
  std::string out, from;
  bool force = false;
  std::vector<Replacement> replacements;
  const auto operands = readCommandLine(
      {"lumora pack create --out mixIm.dat [--from PACK] [--slot NAME=PICTURE ...]",
       "Draws the default texture pack, or takes another one. Single textures can be replaced by\n"
       "pictures of any size and format. Folders that the name needs are made.\n",
       {{"Options",
         {{"out", 'o', "FILE", "the pack to write", keep(out)},
          {"from", 0, "PACK", "start from this pack instead of the default one", keep(from)},
          {"slot", 0, "NAME=PICTURE", "use this picture for a texture; may be given again",
           [&](const std::string& v) { replacements.push_back(parseReplacement(v)); }},
          forceOption(force)}}},
       "  lumora pack create --out mixIm.dat\n"
       "  lumora pack create --out mixIm.dat --slot vignette=mine.png --slot leak0=light.jpg\n"
       "  lumora pack create --from old/mixIm.dat --out new/mixIm.dat --slot grain=grain.png\n"},
      argc, argv);
  if (!operands) return kExitDone;
  if (out.empty()) throw UsageError("--out FILE is needed");
  if (!operands->empty()) throw UsageError("pack create takes no operands");
  for (const Replacement& r : replacements) requireOtherFile(r.path, out);
  if (!from.empty()) requireOtherFile(from, out);
  std::vector<std::uint8_t> pack = from.empty() ? defaultPack() : readPack(from);
  makeFolder(std::filesystem::path(out).parent_path().string());
  Output output(out, {.force = force});
  if (!replacements.empty()) startImageLibrary(argv[0], false);
  for (const Replacement& r : replacements) {
    try {
      fillSlot(pack, *r.slot, r.path);
    } catch (const PictureError& error) {
      throw PictureError(text(r.path, ": ", error.what()));
    }
  }
  output.finish(pack.data(), pack.size());
  return kExitDone;
}

int show(int argc, char** argv) {
  bool force = false;
  const auto operands = readCommandLine({"lumora pack show [--force] mixIm.dat OUT.png",
                                         "Draws a labelled sheet of the textures in a pack.\n",
                                         {{"Options", {forceOption(force)}}},
                                         "  lumora pack show mixIm.dat textures.png\n"},
                                        argc, argv);
  if (!operands) return kExitDone;
  if (operands->size() != 2) throw UsageError("a pack and an output picture are needed");
  const std::string& path = operands->at(1);
  const std::vector<std::uint8_t> pack = readPack(operands->at(0));
  const std::string suffix = requireWritableName(path);
  requireOtherFile(operands->at(0), path);
  Output output(path, {.force = force});
  startImageLibrary(argv[0], false);
  std::vector<SheetCell> cells;
  for (const PackImage& slot : kPackImages) {
    cells.push_back({text(slot.name, " (", userOf(slot).name, ")"), slotImage(pack, slot)});
  }
  const std::vector<std::uint8_t> file =
      encode(contactSheet(cells, 5, 256, 256), {}, suffix, kDefaultQuality);
  output.finish(file.data(), file.size());
  return kExitDone;
}

int check(int argc, char** argv) {
  const auto operands = readCommandLine({"lumora pack check mixIm.dat",
                                         "Names the first thing that is wrong with a pack.\n",
                                         {},
                                         "  lumora pack check mixIm.dat\n"},
                                        argc, argv);
  if (!operands) return kExitDone;
  if (operands->size() != 1) throw UsageError("one pack is needed");
  readPack(operands->front());
  std::cout << operands->front() << ": a usable texture pack\n";
  return kExitDone;
}

// A texture as a picture file.
void writeSlot(const std::vector<std::uint8_t>& pack, const PackImage& slot, Output& output) {
  const VImage image = slotImage(pack, slot);
  void* encoded = nullptr;
  std::size_t bytes = 0;
  (slot.bytesPerPixel == 1 ? image.extract_band(0) : image)
      .write_to_buffer(".png", &encoded, &bytes);
  const VipsBytes owner(static_cast<std::uint8_t*>(encoded));
  output.write(owner.get(), bytes);
}

int extract(int argc, char** argv) {
  bool force = false;
  const auto operands =
      readCommandLine({"lumora pack extract [--force] mixIm.dat FOLDER",
                       "Writes every texture of a pack as NAME.png into a folder, which is made.\n",
                       {{"Options", {forceOption(force)}}},
                       "  lumora pack extract mixIm.dat textures\n"},
                      argc, argv);
  if (!operands) return kExitDone;
  if (operands->size() != 2) throw UsageError("a pack and a folder are needed");
  const std::vector<std::uint8_t> pack = readPack(operands->at(0));
  startImageLibrary(argv[0], false);
  makeFolder(operands->at(1));
  // All outputs, before the first is there for good.
  std::deque<Output> outputs;
  for (const PackImage& slot : kPackImages) {
    const std::string path = text(operands->at(1), '/', slot.name, ".png");
    requireOtherFile(operands->at(0), path);
    writeSlot(pack, slot, outputs.emplace_back(path, OutputRules{.force = force}));
  }
  for (Output& output : outputs) output.commit();
  return kExitDone;
}

struct Action {
  const char* name;
  const char* summary;
  int (*run)(int argc, char** argv);
};
constexpr Action kActions[] = {{"create", "draw a pack, with one's own pictures in it", create},
                               {"show", "draw a labelled sheet of a pack", show},
                               {"check", "name the first thing wrong with a pack", check},
                               {"extract", "write the textures as pictures", extract}};

}  // namespace

int packCommand(int argc, char** argv) {
  std::vector<std::string> names;
  const std::string wanted = argc > 1 ? argv[1] : "--help";
  for (const Action& action : kActions) {
    if (wanted == action.name) return action.run(argc - 1, argv + 1);
    names.emplace_back(action.name);
  }
  if (wanted != "--help" && wanted != "-h") {
    throw UsageError(text("there is no 'pack ", wanted, "'", didYouMean(wanted, names)));
  }
  std::cout << "Usage: lumora pack ACTION ...\n\nThe texture pack of the texture looks.\n\n";
  for (const Action& action : kActions) {
    std::cout << "  " << action.name << std::string(10 - std::strlen(action.name), ' ')
              << action.summary << '\n';
  }
  std::cout << "\n'lumora pack ACTION --help' tells more. The slots of a pack are\n"
            << joinedSlotNames() << ".\n"
            << "\nExamples:\n"
            << "  lumora pack create --out mixIm.dat --slot vignette=mine.png\n"
            << "  lumora apply --look earlybird --resources . photo.jpg result.jpg\n";
  return kExitDone;
}

}  // namespace lumora::tool
