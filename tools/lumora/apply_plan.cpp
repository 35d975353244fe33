#include "apply_plan.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <utility>

#include "errors.h"
#include "photograph.h"
#include "words.h"

namespace lumora::tool {
namespace {

namespace fs = std::filesystem;

using FileIdentity = std::pair<dev_t, ino_t>;

std::optional<FileIdentity> identityOf(const std::string& path) {
  struct stat status;
  if (::stat(path.c_str(), &status) != 0) return std::nullopt;
  return FileIdentity{status.st_dev, status.st_ino};
}

bool isFolder(const std::string& path) {
  std::error_code missing;
  return fs::is_directory(path, missing);
}

// The format that a file name asks for; empty when it names none that can be written.
std::string formatFor(const PlanSettings& settings, const fs::path& name) {
  if (!settings.format.empty()) return settings.format;
  const std::string suffix = lowerCase(name.extension().string());
  return isWritableSuffix(suffix) ? suffix : std::string();
}

// Collects the pictures of a run that writes into a folder, in the order of the operands.
class FolderPlan {
 public:
  explicit FolderPlan(const PlanSettings& settings)
      : settings_(settings), outputFolder_(identityOf(settings.outputFolder)) {}

  void addOperand(const std::string& operand) {
    if (operand == "-") throw UsageError("standard input has no name to keep; use IN OUT");
    if (!isFolder(operand)) {
      addPicture(operand, {});
    } else if (!settings_.recursive) {
      refuse(operand, "is a folder, not a picture; --recursive takes the pictures in it");
    } else {
      const std::size_t before = pictures_.size();
      addFolder(operand, {});
      if (pictures_.size() == before) refuse(operand, "holds no pictures");
    }
  }

  Plan finish() {
    refuseLosses();
    Plan plan;
    for (PlannedPicture& picture : pictures_) {
      const bool isDone = settings_.skipExisting && picture.refusal.empty() &&
                          identityOf(picture.output) && !isFolder(picture.output);
      if (isDone) {
        ++plan.skipped;
      } else {
        plan.pictures.push_back(std::move(picture));
      }
    }
    return plan;
  }

 private:
  void refuse(const std::string& input, const std::string& reason) {
    pictures_.push_back({input, {}, {}, reason});
  }

  // `place` is where it lies below the operand and will lie below the output folder.
  void addPicture(const fs::path& input, const fs::path& place) {
    const std::string extension =
        settings_.format.empty() ? input.extension().string() : settings_.format;
    const std::string name = input.stem().string() + settings_.suffix + extension;
    const fs::path output = fs::path(settings_.outputFolder) / place / name;
    pictures_.push_back({input.string(), output.string(), formatFor(settings_, input), {}});
  }

  // Sorted; hidden files, files that are not named like pictures and links to folders are left out,
  // and so is the output folder.
  void addFolder(const fs::path& folder, const fs::path& place) {
    std::error_code error;
    std::vector<fs::directory_entry> entries;
    for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
      if (!it->path().filename().string().starts_with('.')) entries.push_back(*it);
    }
    if (error) refuse(folder.string(), text("cannot be listed: ", error.message()));
    std::sort(entries.begin(), entries.end());
    for (const fs::directory_entry& entry : entries) {
      const fs::path& path = entry.path();
      if (entry.is_directory(error) && !entry.is_symlink(error)) {
        const bool isOutput = outputFolder_ && identityOf(path.string()) == outputFolder_;
        if (!isOutput) addFolder(path, place / path.filename());
      } else if (entry.is_regular_file(error) && isPictureSuffix(path.extension().string())) {
        addPicture(path, place);
      }
    }
  }

  // The outputs' names are made up, so nothing may get lost by them: neither a picture of this run
  // nor the result of another one.
  void refuseLosses() {
    std::map<FileIdentity, std::string> inputs;
    for (const PlannedPicture& picture : pictures_) {
      if (const auto identity = identityOf(picture.input)) inputs.emplace(*identity, picture.input);
    }
    std::map<std::string, std::string> inputOfOutput;
    for (PlannedPicture& picture : pictures_) {
      if (!picture.refusal.empty()) continue;
      picture.refusal = lossBy(picture, inputs);
      const auto [first, isNew] = inputOfOutput.emplace(picture.output, picture.input);
      if (!isNew) picture.refusal = text(picture.output, " is already made from ", first->second);
    }
  }

  std::string lossBy(const PlannedPicture& picture,
                     const std::map<FileIdentity, std::string>& inputs) const {
    try {
      requireReadableFile(picture.input);
    } catch (const PictureError& error) {
      return error.what();
    }
    const auto output = identityOf(picture.output);
    const auto lost = output && !settings_.skipExisting ? inputs.find(*output) : inputs.end();
    if (lost == inputs.end()) return {};
    return identityOf(picture.input) == output
               ? "would be overwritten; use --suffix or another folder"
               : text("would overwrite ", lost->second, "; use another --suffix or folder");
  }

  const PlanSettings& settings_;
  const std::optional<FileIdentity> outputFolder_;
  std::vector<PlannedPicture> pictures_;
};

Plan planPair(const PlanSettings& settings, const std::string& input, const std::string& output) {
  if (isFolder(output)) {
    throw UsageError(text(output, ": is a folder; use --out-dir ", output, " to write into it"));
  }
  const std::string format = formatFor(settings, output);
  if (format.empty()) {
    throw UsageError(text(output, ": its name does not say in which format to write (",
                          writableSuffixes(), "); choose one with --to"));
  }
  if (settings.skipExisting && output != "-" && identityOf(output)) return {{}, 1};
  const char* refusal =
      isFolder(input) ? "is a folder, not a picture; its pictures take --recursive and --out-dir"
                      : "";
  return {{{input, output, format, refusal}}, 0};
}

}  // namespace

Plan planPictures(const PlanSettings& settings, const std::vector<std::string>& operands) {
  if (settings.outputFolder.empty()) {
    if (!settings.suffix.empty()) throw UsageError("--suffix needs --out-dir DIR");
    if (settings.recursive) throw UsageError("--recursive needs --out-dir DIR");
    if (operands.size() != 2) {
      throw UsageError(operands.size() < 2 ? "an input and an output picture are needed"
                                           : "several pictures need --out-dir DIR to go to");
    }
    return planPair(settings, operands[0], operands[1]);
  }
  if (operands.empty()) throw UsageError("no picture is named");
  FolderPlan plan(settings);
  for (const std::string& operand : operands) plan.addOperand(operand);
  return plan.finish();
}

}  // namespace lumora::tool
