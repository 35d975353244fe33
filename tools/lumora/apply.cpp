// lumora apply: photographs in, photographs out.
#include <filesystem>
#include <iostream>
#include <map>
#include <optional>

#include "commands.h"
#include "errors.h"
#include "filter.h"
#include "library_log.h"
#include "output.h"
#include "photograph.h"

namespace lumora::tool {
namespace {

namespace fs = std::filesystem;

struct ApplySettings {
  LookSettings look;
  ResourceSettings resources;
  std::string outputFolder;
  std::string suffix;  // put behind the file's own name
  std::string format;  // suffix of the file format; empty: as the output or input is named
  int quality = kDefaultQuality;
  bool verbose = false;
};

struct Job {
  std::string input;
  std::string output;
  std::string format;
};

std::string parseFormat(const std::string& value) {
  const std::string suffix = text(value.starts_with('.') ? "" : ".", lowerCase(value));
  if (isWritableSuffix(suffix)) return suffix;
  throw UsageError(text("'", value, "' is not one of ", writableSuffixes()));
}

CommandLine commandLine(ApplySettings& s) {
  return {
      "lumora apply --look NAME [options] IN OUT\n"
      "lumora apply --look NAME [options] --out-dir DIR IN...",
      "Gives photographs a look. The result keeps the colour profile, EXIF (with a new\n"
      "thumbnail), XMP and transparency, and is upright. '-' is standard input or output. A\n"
      "picture that fails is reported and left out; an output file appears complete or not at\n"
      "all.\n",
      {lookOptions(s.look),
       modeOptions(s.look),
       {"Output",
        {{"out-dir", 'd', "DIR", "write every picture into this folder, under its own name",
          keep(s.outputFolder)},
         {"suffix", 0, "TEXT", "with --out-dir: put TEXT behind the names (photo_TEXT.jpg: _TEXT)",
          keep(s.suffix)},
         {"to", 0, "FORMAT", "jpg, png, webp, tif, avif or heic; default: as the name says",
          [&s](const std::string& v) { s.format = parseFormat(v); }},
         {"quality", 'q', "1..100", "of jpg, webp, avif and heic; default 92",
          [&s](const std::string& v) { s.quality = parseInteger(v, 1, 100); }},
         {"verbose", 'v', nullptr, "show what is done and the library's log", raise(s.verbose)}}},
       resourceOptions(s.resources)},
      "  lumora apply --look heibai photo.jpg grey.jpg\n"
      "  lumora apply --look lofi --strength 8 --out-dir done --suffix _lofi *.jpg\n"
      "  lumora apply --look mosaic --rect 400,200,160,160 --block 16 photo.jpg hidden.jpg\n"
      "  lumora apply --look colour-fix --pick 320,240 photo.png red.png\n"};
}

// The format that a file name asks for; empty when it names none that can be written.
std::string formatFor(const ApplySettings& settings, const std::string& name) {
  if (!settings.format.empty()) return settings.format;
  const std::string suffix = lowerCase(fs::path(name).extension().string());
  return isWritableSuffix(suffix) ? suffix : std::string();
}

Job jobForPair(const ApplySettings& settings, const std::string& input, const std::string& output) {
  std::error_code missing;
  if (fs::is_directory(output, missing)) {
    throw UsageError(text(output, ": is a folder; use --out-dir ", output, " to write into it"));
  }
  const std::string format = formatFor(settings, output);
  if (format.empty()) {
    throw UsageError(text(output, ": its name does not say in which format to write (",
                          writableSuffixes(), "); choose one with --to"));
  }
  return {input, output, format};
}

Job jobInFolder(const ApplySettings& settings, const std::string& input) {
  if (input == "-") throw UsageError("standard input has no name to keep; use IN OUT");
  const fs::path name(input);
  const std::string extension =
      settings.format.empty() ? name.extension().string() : settings.format;
  const std::string file = name.stem().string() + settings.suffix + extension;
  return {input, (fs::path(settings.outputFolder) / file).string(), formatFor(settings, input)};
}

std::vector<Job> planJobs(const ApplySettings& settings, const std::vector<std::string>& operands) {
  if (settings.outputFolder.empty()) {
    if (operands.size() != 2) {
      throw UsageError(operands.size() < 2 ? "an input and an output picture are needed"
                                           : "several pictures need --out-dir DIR to go to");
    }
    if (!settings.suffix.empty()) throw UsageError("--suffix needs --out-dir DIR");
    return {jobForPair(settings, operands[0], operands[1])};
  }
  if (operands.empty()) throw UsageError("no picture is named");
  std::vector<Job> jobs;
  for (const std::string& input : operands) jobs.push_back(jobInFolder(settings, input));
  return jobs;
}

std::vector<std::uint8_t> filteredFile(const ApplySettings& settings, Filter& filter,
                                       const Job& job) {
  Photograph photograph = Photograph::read(job.input);
  if (job.format.empty()) {
    throw PictureError("cannot be written in the format of its name; choose one with --to");
  }
  filter.apply(settings.look, photograph.image());
  return photograph.encode(job.format, settings.quality);
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

// Does the jobs one after the other and reports those that fail.
class Batch {
 public:
  Batch(const ApplySettings& settings, int standardOutput)
      : settings_(settings),
        standardOutput_(standardOutput),
        filter_(settings.resources, settings.look) {}

  int run(const std::vector<Job>& jobs) {
    int failed = 0;
    for (const Job& job : jobs) {
      try {
        process(job);
      } catch (const PictureError& error) {
        std::cerr << "lumora: " << error.what() << '\n';
        ++failed;
      }
    }
    if (failed > 0 && jobs.size() > 1) {
      std::cerr << "lumora: " << failed << " of " << jobs.size() << " pictures failed\n";
    }
    return failed == 0 ? kExitDone : kExitPictureFailed;
  }

 private:
  void process(const Job& job) {
    if (!settings_.outputFolder.empty()) naming(job.input, [&] { requireOwnOutput(job); });
    const std::vector<std::uint8_t> file =
        naming(job.input, [&] { return filteredFile(settings_, filter_, job); });
    std::optional<Output> output;
    job.output == "-" ? output.emplace(standardOutput_) : output.emplace(job.output);
    output->write(file.data(), file.size());
    output->commit();
    if (settings_.verbose) std::cerr << "lumora: " << job.input << " -> " << job.output << '\n';
  }

  // In a folder the outputs' names are made up, so nothing may get lost by them.
  void requireOwnOutput(const Job& job) {
    std::error_code missing;
    if (fs::equivalent(job.input, job.output, missing)) {
      throw PictureError("would be overwritten; use --suffix or another folder");
    }
    const auto [first, isNew] = inputOf_.emplace(job.output, job.input);
    if (!isNew) throw PictureError(text(job.output, " is already made from ", first->second));
  }

  const ApplySettings& settings_;
  const int standardOutput_;
  Filter filter_;
  std::map<std::string, std::string> inputOf_;  // by output
};

void makeOutputFolder(const std::string& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) throw PictureError(text(folder, ": cannot be made a folder: ", error.message()));
}

}  // namespace

int applyCommand(int argc, char** argv) {
  ApplySettings settings;
  const auto operands = readCommandLine(commandLine(settings), argc, argv);
  if (!operands) return kExitDone;
  checkLookSettings(settings.look);
  const std::vector<Job> jobs = planJobs(settings, *operands);

  if (settings.verbose) showLibraryLog();
  const int standardOutput = takeStandardOutput(settings.verbose);
  startImageLibrary(argv[0], settings.verbose);
  loadMask(settings.look);
  Batch batch(settings, standardOutput);
  if (!settings.outputFolder.empty()) makeOutputFolder(settings.outputFolder);
  return batch.run(jobs);
}

}  // namespace lumora::tool
