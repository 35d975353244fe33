// lumora apply: photographs in, photographs out.
#include <algorithm>
#include <deque>
#include <filesystem>
#include <optional>
#include <thread>

#include "apply_plan.h"
#include "batch.h"
#include "commands.h"
#include "errors.h"
#include "filter.h"
#include "image_library.h"
#include "library_log.h"
#include "output.h"
#include "photograph.h"

namespace lumora::tool {
namespace {

namespace fs = std::filesystem;

struct ApplySettings {
  LookSettings look;
  ResourceSettings resources;
  PlanSettings plan;
  int jobs = 1;
  int quality = kDefaultQuality;
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

std::string parseSuffix(const std::string& value) {
  if (value.find('/') == value.npos) return value;
  throw UsageError(text("'", value, "' is a part of file names and cannot hold '/'"));
}

CommandLine commandLine(ApplySettings& s) {
  return {
      "lumora apply --look NAME [options] IN OUT\n"
      "lumora apply --look NAME [options] --out-dir DIR IN...",
      "Gives photographs a look. The result keeps the colour profile, EXIF (with a new\n"
      "thumbnail), XMP and transparency, and is upright, with eight bits a channel. '-' is\n"
      "standard input or output. A picture that fails is reported and left out; an output file\n"
      "appears complete or not at all, also when Ctrl-C ends the run. On a terminal a bar shows\n"
      "how far several pictures are.\n",
      {lookOptions(s.look),
       modeOptions(s.look),
       {"Output",
        {{"to", 0, "FORMAT", "jpg, png, webp, tif, avif or heic; default: as the name says",
          [&s](const std::string& v) { s.plan.format = parseFormat(v); }},
         {"quality", 'q', "1..100", "of jpg, webp, avif and heic; default 92",
          [&s](const std::string& v) { s.quality = parseInteger(v, 1, 100); }},
         {"skip-existing", 0, nullptr, "leave pictures out whose output exists",
          raise(s.plan.skipExisting)},
         {"verbose", 'v', nullptr, "show what is done and the library's log", raise(s.verbose)}}},
       {"Several pictures",
        {{"out-dir", 'd', "DIR", "write every picture into this folder, under its own name",
          keep(s.plan.outputFolder)},
         {"suffix", 0, "TEXT", "put TEXT behind the names (photo_TEXT.jpg: _TEXT)",
          [&s](const std::string& v) { s.plan.suffix = parseSuffix(v); }},
         {"recursive", 'r', nullptr,
          "take folders too: the pictures in them and in the folders\n"
          "below, which come to lie in the same folders below DIR",
          raise(s.plan.recursive)},
         {"jobs", 'j', "N",
          "work on N pictures at a time, each in one thread, all in\n"
          "memory; 'auto': as many as there are processors; default 1",
          [&s](const std::string& v) { s.jobs = parseJobs(v); }}}},
       resourceOptions(s.resources)},
      "  lumora apply --look heibai photo.jpg grey.jpg\n"
      "  lumora apply --look lofi --strength 8 --out-dir done --suffix _lofi *.jpg\n"
      "  lumora apply --look rixi --recursive --jobs auto --skip-existing --out-dir done photos\n"
      "  lumora apply --look mosaic --rect 400,200,160,160 --block 16 photo.jpg hidden.jpg\n"
      "  lumora apply --look colour-fix --pick 320,240 photo.png red.png\n"
      "  curl https://example.org/photo.jpg | lumora apply --look fugu --to png - - > photo.png\n"};
}

void makeFolder(const std::string& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) throw PictureError(text(folder, ": cannot be made a folder: ", error.message()));
}

std::vector<std::uint8_t> filteredFile(const ApplySettings& settings, Filter& filter,
                                       const PlannedPicture& picture) {
  if (!picture.refusal.empty()) throw PictureError(picture.refusal);
  Photograph photograph = Photograph::read(picture.input);
  if (picture.format.empty()) {
    throw PictureError("cannot be written in the format of its name; choose one with --to");
  }
  filter.apply(settings.look, photograph.image());
  return photograph.encode(picture.format, settings.quality);
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

void process(const ApplySettings& settings, Filter& filter, int standardOutput,
             const PlannedPicture& picture) {
  const std::vector<std::uint8_t> file =
      naming(picture.input, [&] { return filteredFile(settings, filter, picture); });
  if (settings.plan.recursive) makeFolder(fs::path(picture.output).parent_path().string());
  std::optional<Output> output;
  picture.output == "-" ? output.emplace(standardOutput) : output.emplace(picture.output);
  output->write(file.data(), file.size());
  output->commit();
}

int runPlan(const ApplySettings& settings, int standardOutput, const Plan& plan) {
  const auto& pictures = plan.pictures;
  std::deque<Filter> filters;
  std::vector<Worker> workers;
  const auto count = std::clamp<std::size_t>(pictures.size(), 1, std::size_t(settings.jobs));
  while (workers.size() < count) {
    Filter& filter = filters.emplace_back(settings.resources, settings.look);
    workers.emplace_back([&, standardOutput](std::size_t job) -> Outcome {
      const PlannedPicture& picture = pictures[job];
      try {
        process(settings, filter, standardOutput, picture);
      } catch (const PictureError& error) {
        return {true, text("lumora: ", error.what(), '\n')};
      }
      if (!settings.verbose) return {};
      return {false, text("lumora: ", picture.input, " -> ", picture.output, '\n')};
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
  checkLookSettings(settings.look);
  // Several pictures at a time keep the processors busy by themselves.
  if (settings.jobs > 1) settings.look.singleThread = true;
  const Plan plan = planPictures(settings.plan, *operands);

  if (settings.verbose) showLibraryLog();
  const int standardOutput = takeStandardOutput(settings.verbose);
  startImageLibrary(argv[0], settings.verbose, settings.jobs);
  loadMask(settings.look);
  if (!settings.plan.outputFolder.empty()) makeFolder(settings.plan.outputFolder);
  return runPlan(settings, standardOutput, plan);
}

}  // namespace lumora::tool
