// lumora apply: photographs in, photographs out.
#include <algorithm>
#include <deque>
#include <filesystem>
#include <functional>
#include <optional>
#include <thread>

#include "apply_plan.h"
#include "batch.h"
#include "commands.h"
#include "errors.h"
#include "filter.h"
#include "formats.h"
#include "image_library.h"
#include "lut/interpolation.h"
#include "lut_picture.h"
#include "output.h"
#include "photograph.h"
#include "pixel_blocks.h"
#include "standard_descriptors.h"

namespace lumora::tool {
namespace {

namespace fs = std::filesystem;

struct ApplySettings {
  LookSettings look;
  std::string lutFile;  // in place of a look
  ResourceSettings resources;
  PlanSettings plan;
  int jobs = 1;
  int quality = kDefaultQuality;
  ProfileUse profile = ProfileUse::kToSrgb;
  bool strip = false;
  bool verbose = false;
};

int parseJobs(const std::string& value) {
  const int jobs = value == "auto" ? 0 : parseInteger(value, 0, 256);
  return jobs > 0 ? jobs : std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

std::string parseFormat(const std::string& value) {
  const std::string suffix = text(value.starts_with('.') ? "" : ".", lowerCase(value));
  if (isWritableSuffix(suffix)) return suffix;
  throw UsageError(text("'", value, "' is not one of ", writableSuffixes()));
}

ProfileUse parseProfile(const std::string& value) {
  if (lowerCase(value) == "srgb") return ProfileUse::kToSrgb;
  if (lowerCase(value) == "keep") return ProfileUse::kKeep;
  throw UsageError(text("'", value, "' is not one of srgb, keep"));
}

std::string parseSuffix(const std::string& value) {
  if (value.find('/') == value.npos) return value;
  throw UsageError(text("'", value, "' is a part of file names and cannot hold '/'"));
}

std::string parseBackupSuffix(const std::string& value) {
  if (value.empty()) throw UsageError("the backup needs another name than the picture");
  return parseSuffix(value);
}

CommandLine commandLine(ApplySettings& s) {
  static const std::string description = text(
      "Gives photographs a look. Reads ", readableFormats(),
      ", told by their\n"
      "content, of several pictures in a file the first. The result is upright, in sRGB (see\n"
      "--profile), with eight bits a channel, and keeps transparency, EXIF (with a new thumbnail,\n"
      "but in tif), XMP, IPTC (in jpg and tif) and comments (png to png). Left out is what shows\n"
      "the photograph as it was or may: maker notes, previews, Photoshop's and other programs'\n"
      "blocks.\n"
      "'-' is standard input or output. A picture that fails is reported and left out; an output\n"
      "file appears complete or not at all, also when Ctrl-C ends the run. Nothing that exists is\n"
      "replaced unless --force or --in-place asks for it. On a terminal a bar shows how far\n"
      "several pictures are.\n");
  return {
      "lumora apply --look NAME [options] IN OUT\n"
      "lumora apply --look NAME [options] --out-dir DIR IN...\n"
      "lumora apply --look NAME [options] --in-place IN...\n"
      "lumora apply --lut FILE [options] ...",
      description.c_str(),
      {lookOptions(s.look),
       {"Look of another program",
        {{"lut", 0, "FILE",
          "a table of colours in place of a look: a .cube file, 1D or\n"
          "3D, or a Hald picture; --strength 0 mixes it in by half",
          keep(s.lutFile)}}},
       modeOptions(s.look),
       {"Output",
        {{"to", 0, "FORMAT",
          "jpg, png, webp, tif, avif or heic; default: as the name says,\n"
          "and for standard output as the input is",
          [&s](const std::string& v) { s.plan.format = parseFormat(v); }},
         {"quality", 'q', "1..100", "of jpg, webp, avif and heic; default 92",
          [&s](const std::string& v) { s.quality = parseInteger(v, 1, 100); }},
         {"profile", 0, "srgb|keep",
          "what becomes of photographs in a wider colour space: sRGB,\n"
          "which the looks are made for (the default), or the same\n"
          "space, with the look on its raw values",
          [&s](const std::string& v) { s.profile = parseProfile(v); }},
         {"strip", 0, nullptr,
          "leave out all metadata that could hold a picture: of EXIF the\n"
          "short fields stay, and the profile; mosaic does so always",
          raise(s.strip)},
         forceOption(s.plan.force),
         {"skip-existing", 0, nullptr, "leave pictures out whose output exists",
          raise(s.plan.skipExisting)},
         {"in-place", 0, nullptr, "put the results where the pictures are", raise(s.plan.inPlace)},
         {"backup", 0, "SUFFIX",
          "with --in-place: keep every original beside its result, with\n"
          "SUFFIX behind its name (photo.jpg.orig: .orig)",
          [&s](const std::string& v) { s.plan.backupSuffix = parseBackupSuffix(v); }},
         {"verbose", 'v', nullptr, "show what is done and the library's log", raise(s.verbose)}}},
       {"Several pictures",
        {{"out-dir", 'd', "DIR", "write every picture into this folder, under its own name",
          keep(s.plan.outputFolder)},
         {"suffix", 0, "TEXT", "put TEXT behind the names (photo_TEXT.jpg: _TEXT)",
          [&s](const std::string& v) { s.plan.suffix = parseSuffix(v); }},
         {"recursive", 'r', nullptr,
          "take folders too: the pictures in them and in the folders\n"
          "below, which come to lie in the same folders below --out-dir",
          raise(s.plan.recursive)},
         {"jobs", 'j', "N",
          "work on N pictures at a time, each in one thread, all in\n"
          "memory; 'auto': as many as there are processors; default 1",
          [&s](const std::string& v) { s.jobs = parseJobs(v); }}}},
       resourceOptions(s.resources)},
      "  lumora apply --look heibai photo.jpg grey.jpg\n"
      "  lumora apply --look lofi --strength 8 --out-dir done --suffix _lofi *.jpg\n"
      "  lumora apply --look rixi --recursive --jobs auto --skip-existing --out-dir done photos\n"
      "  lumora apply --look moran --in-place --backup .orig photo.jpg\n"
      "  lumora apply --look mosaic --rect 400,200,160,160 --block 16 photo.jpg hidden.jpg\n"
      "  lumora apply --look colour-fix --pick 320,240 photo.png red.png\n"
      "  curl https://example.org/photo.jpg | lumora apply --look fugu - - > photo.jpg\n"};
}

// Standard output has no name that could tell the format: it gets the one of the input.
std::string formatOf(const PlannedPicture& picture, const Photograph& photograph) {
  const std::string format = picture.format.empty() && picture.output == "-"
                                 ? photograph.format().suffixes.front()
                                 : picture.format;
  if (isWritableSuffix(format)) return format;
  throw PictureError(picture.output == "-"
                         ? text(photograph.format().name, " is not written; choose with --to")
                         : "cannot be written in the format of its name; choose one with --to");
}

// What is done to the pixels.
using Step = std::function<void(const FilterImage&)>;

std::vector<std::uint8_t> filteredFile(const ApplySettings& settings, const Step& filter,
                                       const PlannedPicture& picture, std::string& remark) {
  if (!picture.refusal.empty()) throw PictureError(picture.refusal);
  Photograph photograph = Photograph::read(picture.input, settings.profile);
  const std::string format = formatOf(picture, photograph);
  // What hides a part shall hide it everywhere.
  const Mode* const mode = settings.look.mode;
  if (settings.strip || (mode != nullptr && mode->number == LUMORA_MODE_MOSAIC)) photograph.strip();
  remark = photograph.lossIn(format);
  filter(photograph.pixels());
  return photograph.encode(format, settings.quality);
}

// Runs a step with the input's name in front of its errors.
template <class Step>
auto naming(const std::string& input, Step step) {
  const char* name = input == "-" ? "standard input" : input.c_str();
  try {
    return step();
  } catch (const PictureError& error) {
    throw PictureError(text(name, ": ", error.what()));
  } catch (const std::bad_alloc&) {
    throw PictureError(text(name, ": not enough memory"));
  }
}

// Returns a remark on the result, which may be empty.
std::string process(const ApplySettings& settings, const Step& filter,
                    const PlannedPicture& picture) {
  std::string remark;
  const std::vector<std::uint8_t> file =
      naming(picture.input, [&] { return filteredFile(settings, filter, picture, remark); });
  if (settings.plan.recursive && !settings.plan.inPlace)
    makeFolder(fs::path(picture.output).parent_path().string());
  const bool replaces = settings.plan.force || settings.plan.inPlace;
  Output output(picture.output, {replaces, picture.backup});
  output.finish(file.data(), file.size());
  return remark.empty() ? remark : text("lumora: ", picture.input, ": ", remark, '\n');
}

int runPlan(const ApplySettings& settings, const Plan& plan) {
  const auto& pictures = plan.pictures;
  std::deque<Filter> filters;
  std::optional<lut::Interpolation> table;
  if (!settings.lutFile.empty()) table.emplace(readLut(settings.lutFile));
  std::vector<Worker> workers;
  const auto count = std::clamp<std::size_t>(pictures.size(), 1, std::size_t(settings.jobs));
  while (workers.size() < count) {
    Step filter;
    if (table) {
      filter = [&](const FilterImage& image) {
        table->apply(image.picData, static_cast<int>(image.width), static_cast<int>(image.height),
                     image.stride, settings.look.values.strength);
      };
    } else {
      Filter& own = filters.emplace_back(settings.resources);
      filter = [&](const FilterImage& image) { own.apply(settings.look, image); };
    }
    workers.emplace_back([&, filter](std::size_t job) -> Outcome {
      const PlannedPicture& picture = pictures[job];
      std::string report;
      try {
        report = process(settings, filter, picture);
      } catch (const PictureError& error) {
        return {true, text("lumora: ", error.what(), '\n')};
      }
      if (settings.verbose) {
        report += text("lumora: ", picture.input, " -> ", picture.output, '\n');
      }
      return {false, report};
    });
  }

  Progress progress(pictures.size(), pictures.size() > 1 && !settings.verbose);
  const std::size_t failed = runBatch(pictures.size(), workers, progress);
  if (settings.verbose && plan.skipped > 0) {
    progress.print(text("lumora: ", plan.skipped, " left out, their output exists\n"));
  }
  if (failed > 0 && pictures.size() > 1) {
    progress.print(text("lumora: ", failed, " of ", pictures.size(), " pictures failed\n"));
  }
  return failed == 0 ? kExitDone : kExitPictureFailed;
}

}  // namespace

int applyCommand(int argc, char** argv) {
  ApplySettings settings;
  const auto operands = readCommandLine(commandLine(settings), argc, argv);
  if (!operands) return kExitDone;
  if (settings.lutFile.empty()) {
    checkLookSettings(settings.look);
  } else if (settings.look.mode != nullptr || !settings.look.given.empty()) {
    throw UsageError("--lut takes the place of --look and the settings of looks");
  }
  // Several pictures at a time keep the processors busy by themselves.
  if (settings.jobs > 1) settings.look.values.singleThread = true;
  settings.plan.otherInputs = {settings.look.maskFile, settings.lutFile, settings.resources.tuning};
  const Plan plan = planPictures(settings.plan, *operands);

  if (settings.verbose) showLibraryLog();
  takeStandardOutput(settings.verbose);
  if (plan.pictures.size() > 1) keepFreedMemory();
  startImageLibrary(argv[0], settings.verbose, settings.jobs);
  loadMask(settings.look);
  makeFolder(settings.plan.outputFolder);
  return runPlan(settings, plan);
}

}  // namespace lumora::tool
