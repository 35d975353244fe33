// lumora apply: photographs in, photographs out.
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <deque>
#include <filesystem>
#include <functional>
#include <iostream>
#include <optional>
#include <span>
#include <utility>

#include "apply_plan.h"
#include "apply_settings.h"
#include "batch.h"
#include "commands.h"
#include "errors.h"
#include "filter.h"
#include "image_library.h"
#include "input_list.h"
#include "lut/interpolation.h"
#include "lut_picture.h"
#include "memory_budget.h"
#include "output.h"
#include "photograph.h"
#include "pixel_blocks.h"
#include "standard_descriptors.h"

namespace lumora::tool {
namespace {

namespace fs = std::filesystem;

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

class Stopwatch {
 public:
  // Milliseconds since the last call.
  double lap() {
    const auto now = std::chrono::steady_clock::now();
    const std::chrono::duration<double, std::milli> passed = now - std::exchange(last_, now);
    return passed.count();
  }

 private:
  std::chrono::steady_clock::time_point last_ = std::chrono::steady_clock::now();
};

std::vector<std::uint8_t> filteredFile(const ApplySettings& settings, const Step& filter,
                                       const PlannedPicture& picture, PictureResult& result) {
  Stopwatch watch;
  Photograph photograph = Photograph::read(picture.input, settings.profile);
  const std::string format = formatOf(picture, photograph);
  // What hides a part shall hide it everywhere.
  const bool hides =
      !settings.modes.empty() && settings.modes[picture.look]->number == LUMORA_MODE_MOSAIC;
  if (settings.strip || hides) photograph.strip();
  result.warning = photograph.lossIn(format);
  const FilterImage pixels = photograph.pixels();
  result.width = pixels.width;
  result.height = pixels.height;
  result.decodeMs = watch.lap();
  filter(pixels);
  result.filterMs = watch.lap();
  std::vector<std::uint8_t> file = photograph.encode(format, settings.quality);
  result.encodeMs = watch.lap();
  return file;
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

void makePicture(const ApplySettings& settings, const Step& filter, const PlannedPicture& picture,
                 PictureResult& result) {
  const std::vector<std::uint8_t> file =
      naming(picture.input, [&] { return filteredFile(settings, filter, picture, result); });
  if (settings.plan.recursive && !settings.plan.inPlace)
    makeFolder(fs::path(picture.output).parent_path().string());
  const bool replaces = settings.plan.force || settings.plan.inPlace;
  Output output(picture.output, {replaces, picture.backup});
  output.finish(file.data(), file.size());
  result.bytes = file.size();
}

// One per thread, with a handle of the library for each.
class PictureMaker {
 public:
  PictureMaker(const ApplySettings& settings, std::span<const LookSettings> looks,
               const lut::Interpolation* table)
      : settings_(settings), looks_(looks), table_(table) {
    if (table == nullptr && !settings.report.dryRun) filter_.emplace(settings.resources);
  }

  PictureResult make(const PlannedPicture& picture, MemoryBudget* budget) {
    PictureResult result;
    try {
      naming(picture.input, [&] {
        if (!picture.refusal.empty()) throw PictureError(picture.refusal);
      });
      if (settings_.report.dryRun) return result;
      std::optional<MemoryBudget::Lease> lease;
      if (budget != nullptr) lease.emplace(*budget, memoryFor(picture.input, picture.format));
      const auto filter = [&](const FilterImage& image) { apply(picture.look, image); };
      makePicture(settings_, filter, picture, result);
    } catch (const PictureError& error) {
      result.error = error.what();
    }
    return result;
  }

 private:
  void apply(std::size_t look, const FilterImage& image) {
    if (filter_) return filter_->apply(looks_[look], image);
    table_->apply(image.picData, static_cast<int>(image.width), static_cast<int>(image.height),
                  image.stride, settings_.look.values.strength);
  }

  const ApplySettings& settings_;
  const std::span<const LookSettings> looks_;
  const lut::Interpolation* const table_;  // in place of looks
  std::optional<Filter> filter_;
};

int runPlan(const ApplySettings& settings, std::span<const LookSettings> looks, const Plan& plan) {
  const auto& pictures = plan.pictures;
  std::optional<lut::Interpolation> table;
  if (!settings.lutFile.empty()) table.emplace(readLut(settings.lutFile));
  std::optional<MemoryBudget> budget;
  Report report(settings.report, table ? std::vector{settings.lutFile} : settings.plan.looks);
  std::deque<PictureMaker> makers;
  std::vector<Worker> workers;
  const auto count = std::clamp<std::size_t>(pictures.size(), 1, std::size_t(settings.jobs));
  if (settings.memory) budget.emplace(*settings.memory, count);
  while (workers.size() < count) {
    PictureMaker& maker = makers.emplace_back(settings, looks, table ? &*table : nullptr);
    workers.emplace_back([&, maker = &maker](std::size_t job) {
      return report.describe(pictures[job],
                             maker->make(pictures[job], budget ? &*budget : nullptr));
    });
  }

  const bool showsBar = pictures.size() > 1 && !settings.report.verbose && !settings.report.dryRun;
  Progress progress(pictures.size(), showsBar);
  report.tellSkipped(plan.skipped);
  runBatch(pictures.size(), workers, progress,
           [&](const Outcome& outcome) { report.tell(outcome, progress); });
  report.tellSummary(plan.skipped.size(), progress);
  return report.exitCode(plan.skipped.size());
}

std::optional<InputList> listOf(const ApplySettings& settings) {
  if (settings.listFile.empty()) {
    if (settings.isListNullSeparated) throw UsageError("--null is about the list of --files-from");
    return std::nullopt;
  }
  InputList list = readInputList(settings.listFile, settings.isListNullSeparated);
  if (list.doubled > 0) {
    std::cerr << text("lumora: ", settings.listFile, ": ", list.doubled,
                      " names stand in it again; they are done once\n");
  }
  return list;
}

std::vector<LookSettings> settledLooks(ApplySettings& settings) {
  if (settings.lutFile.empty()) return settleLooks(settings.look, settings.modes);
  if (!settings.modes.empty() || !settings.look.given.empty()) {
    throw UsageError("--lut takes the place of --look and the settings of looks");
  }
  settings.look.values.strength = settings.look.strength.levelOn(nullptr);
  return {};
}

void checkStandardOutput(const ApplySettings& settings, const std::vector<std::string>& operands) {
  if (!settings.report.json || !settings.plan.outputFolder.empty() || operands.size() != 2) return;
  if (outputDescriptorOf(operands[1]) == STDOUT_FILENO) {
    throw UsageError("--json goes to standard output, and so does the picture");
  }
}

}  // namespace

int applyCommand(int argc, char** argv) {
  ApplySettings settings;
  const auto operands = readCommandLine(applyCommandLine(settings), argc, argv);
  if (!operands) return kExitDone;
  // Several pictures at a time keep the processors busy by themselves.
  if (settings.jobs > 1) settings.look.values.singleThread = true;
  std::vector<LookSettings> looks = settledLooks(settings);
  for (const Mode* mode : settings.modes) settings.plan.looks.emplace_back(mode->name);
  settings.plan.otherInputs = {settings.look.maskFile, settings.lutFile, settings.resources.tuning,
                               settings.listFile == "-" ? "" : settings.listFile};
  checkStandardOutput(settings, *operands);
  const std::optional<InputList> list = listOf(settings);
  const Plan plan = planPictures(settings.plan, *operands, list ? &list->names : nullptr);

  if (settings.report.verbose) showLibraryLog();
  takeStandardOutput(settings.report.verbose);
  if (plan.pictures.size() > 1 && !settings.memory) keepFreedMemory();
  startImageLibrary(argv[0], settings.report.verbose, settings.jobs);
  for (LookSettings& look : looks) loadMask(look);
  if (!settings.report.dryRun) makeFolder(settings.plan.outputFolder);
  return runPlan(settings, looks, plan);
}

}  // namespace lumora::tool
