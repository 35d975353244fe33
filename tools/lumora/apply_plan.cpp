#include "apply_plan.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <utility>

#include "errors.h"
#include "formats.h"
#include "output_place.h"
#include "picture_file.h"
#include "words.h"

namespace lumora::tool {
namespace {

namespace fs = std::filesystem;

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

// With a slash behind it a path has no last name.
fs::path lastName(const fs::path& path) {
  return path.has_filename() ? path.filename() : path.parent_path().filename();
}

// Takes the operands in their order, then settles what becomes of each.
class Planner {
 public:
  explicit Planner(const PlanSettings& settings)
      : settings_(settings), outputFolder_(identityOf(settings.outputFolder)) {}

  void addPair(const std::string& input, const std::string& output) {
    const fs::path path(output);
    for (std::size_t look = 0; look < lookCount(); ++look) {
      const std::string name = path.stem().string() + lookSuffix(look) + path.extension().string();
      const std::string own = lookCount() == 1 ? output : (path.parent_path() / name).string();
      pictures_.push_back({input, own, formatFor(settings_, output), {}, {}, input, look});
      if (isFolder(input)) {
        pictures_.back().refusal =
            "is a folder, not a picture; its pictures take --recursive and --out-dir";
      }
    }
  }

  void addOperand(const std::string& operand) {
    if (operand == "-") throw UsageError("standard input has no name to keep; use IN OUT");
    if (!isFolder(operand)) {
      addPicture(operand, {}, operand);
    } else if (!settings_.recursive) {
      refuse(operand, "is a folder, not a picture; --recursive takes the pictures in it");
    } else {
      const std::size_t before = pictures_.size();
      addFolder(operand, {}, lastName(operand));
      if (pictures_.size() == before) refuse(operand, "holds no pictures");
    }
  }

  // Nothing may get lost by this run, neither its inputs nor what lies where its outputs shall go.
  Plan finish() {
    for (const std::string& path : settings_.otherInputs) noteInput(path);
    for (const PlannedPicture& picture : pictures_) noteInput(picture.input);
    std::vector<std::string> names;
    if (settings_.shard.count > 1) sortByName();
    for (const PlannedPicture& picture : pictures_) names.push_back(picture.name);
    const std::vector<bool> isOurs = selectShare(names, settings_.shard);
    Plan plan;
    // Those of other shares are settled too: two machines must not make one output.
    for (std::size_t i = 0; i < pictures_.size(); ++i) {
      const bool isMade = settle(pictures_[i]);
      if (isOurs[i]) (isMade ? plan.skipped : plan.pictures).push_back(std::move(pictures_[i]));
    }
    return plan;
  }

 private:
  std::size_t lookCount() const { return std::max<std::size_t>(1, settings_.looks.size()); }

  std::string lookSuffix(std::size_t look) const {
    return lookCount() == 1 ? std::string() : '_' + settings_.looks[look];
  }

  void refuse(const std::string& input, const std::string& reason) {
    pictures_.push_back({input, {}, {}, reason, {}, input});
  }

  // `place` is where it lies below the operand and will lie below the output folder.
  void addPicture(const fs::path& input, const fs::path& place, const fs::path& sharedName) {
    const std::string extension =
        settings_.format.empty() ? input.extension().string() : settings_.format;
    for (std::size_t look = 0; look < lookCount(); ++look) {
      const std::string name =
          input.stem().string() + lookSuffix(look) + settings_.suffix + extension;
      const fs::path output =
          settings_.inPlace ? input : fs::path(settings_.outputFolder) / place / name;
      pictures_.push_back({input.string(),
                           output.string(),
                           formatFor(settings_, input),
                           {},
                           {},
                           sharedName.string(),
                           look});
    }
  }

  // Of two inputs for one output the first counts, so all shares need the same order.
  void sortByName() {
    std::stable_sort(pictures_.begin(), pictures_.end(),
                     [](const auto& a, const auto& b) { return a.name < b.name; });
  }

  // Whether the output exists and shall be kept.
  bool settle(PlannedPicture& picture) {
    if (!picture.refusal.empty()) return false;
    const OutputPlace place = findOutputPlace(picture.output);
    picture.refusal = refusalOf(picture, place);
    return picture.refusal.empty() && settings_.skipExisting &&
           place.kind == OutputPlace::Kind::kFile;
  }

  // Sorted; hidden files, files that are not named like pictures and links to folders are left out,
  // and so is the output folder.
  void addFolder(const fs::path& folder, const fs::path& place, const fs::path& sharedName) {
    std::error_code error;
    std::vector<fs::directory_entry> entries;
    for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
      if (!it->path().filename().string().starts_with('.')) entries.push_back(*it);
    }
    if (error) refuse(folder.string(), text("cannot be listed: ", error.message()));
    std::sort(entries.begin(), entries.end());
    for (const fs::directory_entry& entry : entries) {
      const fs::path& path = entry.path();
      const fs::path name = sharedName / path.filename();
      if (entry.is_directory(error) && !entry.is_symlink(error)) {
        if (identityOf(path.string()) != outputFolder_)
          addFolder(path, place / path.filename(), name);
      } else if (entry.is_regular_file(error) && isPictureSuffix(path.extension().string())) {
        addPicture(path, place, name);
      }
    }
  }

  void noteInput(const std::string& path) {
    const std::string identity = identityOf(path == "-" ? "/dev/stdin" : path);
    if (!identity.empty()) inputs_.emplace(identity, path);
  }

  std::string refusalOf(PlannedPicture& picture, const OutputPlace& place) {
    try {
      if (picture.input != "-") requireReadableFile(picture.input);
    } catch (const PictureError& error) {
      return error.what();
    }
    if (place.kind == OutputPlace::Kind::kUnusable) {
      return text(picture.output, " cannot be written: ", place.reason);
    }
    const auto [first, isNew] = inputOfOutput_.emplace(place.identity, picture.input);
    if (!isNew) return text(picture.output, " is already made from ", first->second);
    return settings_.inPlace ? faultInPlace(picture, place) : lossBy(picture, place);
  }

  // Sets the picture's backup.
  std::string faultInPlace(PlannedPicture& picture, const OutputPlace& place) {
    if (place.kind != OutputPlace::Kind::kFile) return "is not a file that can be replaced";
    if (picture.format.empty()) return "cannot be written in the format of its name";
    if (settings_.backupSuffix.empty()) return {};
    picture.backup = place.path + settings_.backupSuffix;
    const OutputPlace backup = findOutputPlace(picture.backup);
    const bool isFree = backup.kind == OutputPlace::Kind::kFree &&
                        inputOfOutput_.emplace(backup.identity, picture.input).second;
    return isFree ? std::string()
                  : text(picture.backup, " exists already; use another --backup SUFFIX");
  }

  std::string lossBy(const PlannedPicture& picture, const OutputPlace& place) const {
    const bool exists = place.kind == OutputPlace::Kind::kFile;
    if (exists && settings_.skipExisting) return {};
    const auto lost = inputs_.find(place.identity);
    if (lost == inputs_.end()) {
      if (!exists || settings_.force) return {};
      return text(picture.output, " exists already; --force replaces it, --skip-existing keeps it");
    }
    return lost->second == picture.input
               ? "would be overwritten; use --suffix, another name or folder, or --in-place"
               : text("would overwrite ", lost->second, "; use another --suffix, name or folder");
  }

  const PlanSettings& settings_;
  const std::string outputFolder_;  // its identity
  std::vector<PlannedPicture> pictures_;
  std::map<std::string, std::string> inputs_;         // by their identity
  std::map<std::string, std::string> inputOfOutput_;  // by the output's identity
};

void checkSettings(const PlanSettings& settings) {
  const bool hasFolder = !settings.outputFolder.empty();
  if (settings.inPlace && (hasFolder || !settings.suffix.empty() || !settings.format.empty())) {
    throw UsageError("--in-place keeps folder, name and format: no --out-dir, --suffix or --to");
  }
  if (settings.inPlace && settings.looks.size() > 1) {
    throw UsageError("--in-place has room for one look");
  }
  if (settings.skipExisting && (settings.inPlace || settings.force)) {
    throw UsageError(
        text("--skip-existing contradicts ", settings.force ? "--force" : "--in-place"));
  }
  if (!settings.backupSuffix.empty() && !settings.inPlace) {
    throw UsageError("--backup needs --in-place");
  }
  if (!settings.suffix.empty() && !hasFolder) throw UsageError("--suffix needs --out-dir DIR");
  if (settings.recursive && !hasFolder && !settings.inPlace) {
    throw UsageError("--recursive needs --out-dir DIR or --in-place");
  }
}

void checkPair(const PlanSettings& settings, const std::vector<std::string>& operands) {
  if (operands.size() != 2) {
    throw UsageError(operands.size() < 2
                         ? "an input and an output picture are needed"
                         : "several pictures need --out-dir DIR to go to, or --in-place");
  }
  const std::string& output = operands[1];
  if (isFolder(output)) {
    throw UsageError(text(output, ": is a folder; use --out-dir ", output, " to write into it"));
  }
  if (output == "-" && settings.looks.size() > 1) {
    throw UsageError("several looks need a name that they can be told apart by, not '-'");
  }
  if (output != "-" && formatFor(settings, output).empty()) {
    throw UsageError(text(output, ": its name does not say in which format to write (",
                          writableSuffixes(), "); choose one with --to"));
  }
}

}  // namespace

Plan planPictures(const PlanSettings& settings, const std::vector<std::string>& operands,
                  const std::vector<std::string>* listed) {
  checkSettings(settings);
  Planner planner(settings);
  if (settings.outputFolder.empty() && !settings.inPlace) {
    if (listed != nullptr) throw UsageError("--files-from needs --out-dir DIR or --in-place");
    checkPair(settings, operands);
    planner.addPair(operands[0], operands[1]);
  } else {
    if (operands.empty() && listed == nullptr) throw UsageError("no picture is named");
    for (const std::string& operand : operands) planner.addOperand(operand);
    if (listed != nullptr) {
      // In a list "-" is a file.
      for (const std::string& name : *listed) planner.addOperand(name == "-" ? "./-" : name);
    }
  }
  return planner.finish();
}

}  // namespace lumora::tool
