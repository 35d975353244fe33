#include "resources.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <vector>

#include "config/xml_parser.h"
#include "errors.h"
#include "host/resources.h"
#include "lumora/filters.h"
#include "resources/resource_files.h"
#include "resources/texture_pack.h"
#include "temporary_files.h"
#include "tuning_text/tuning_text.h"

namespace lumora::tool {
namespace {

namespace fs = std::filesystem;

bool holdsPack(const fs::path& directory) {
  std::error_code error;
  return fs::is_regular_file(directory / kPackName, error);
}

std::vector<fs::path> knownDirectories() {
  std::error_code error;
  const fs::path executable = fs::read_symlink("/proc/self/exe", error);
  if (error) return {};
  return host::resourceFolders(executable.parent_path(), LUMORA_BUILD_ROOT,
                               LUMORA_INSTALLED_RESOURCES);
}

fs::path findDirectory(const std::string& asked) {
  if (!asked.empty()) {
    if (holdsPack(asked)) return asked;
    throw ResourceError(text(asked, "/", kPackName,
                             ": there is no such texture pack; name the folder that holds one with "
                             "--resources DIR"));
  }
  std::string tried;
  for (const fs::path& directory : knownDirectories()) {
    if (holdsPack(directory)) return directory;
    tried += "\n  " + directory.string();
  }
  throw ResourceError(text("no texture pack ", kPackName, " was found; name the folder that holds ",
                           "one with --resources DIR. Looked in:", tried));
}

void link(const fs::path& target, const fs::path& place) {
  std::error_code error;
  fs::create_symlink(fs::absolute(target), place, error);
  if (error) throw ResourceError(text(place.string(), ": cannot be linked: ", error.message()));
}

void requireDocument(const std::string& path, const std::string& name) {
  std::error_code error;
  const char* reason = nullptr;
  if (!fs::exists(path, error)) {
    reason = "there is no such file";
  } else if (!fs::is_regular_file(path, error)) {
    reason = "is not a file";
  } else if (::access(path.c_str(), R_OK) != 0) {
    reason = std::strerror(errno);
  } else if (fs::file_size(path, error) > std::uintmax_t{kLargestDocument}) {
    reason = "is longer than the 16 MiB that are read";
  }
  if (reason) throw ResourceError(text(name, ": ", reason, "; a tuning document is needed"));
}

}  // namespace

TuningReport readTuning(const std::string& path, const std::string& name) {
  requireDocument(path, name);
  FilterParams params;
  TuningReport report;
  const Status status = readFilterParams(params.bytes, path.c_str(), report);
  if (status != Status::kOk) throw ResourceError(text(name, ": the path is too long"));
  const bool isRead = keepsDocument(report.document.status);
  if (isRead && report.hasConfig) return report;
  throw ResourceError(text(name, ": ", isRead ? "has no element /Config" : describeDocument(report),
                           "; every look would have its built-in values"));
}

OptionGroup resourceOptions(ResourceSettings& settings) {
  return {"Resources",
          {{"resources", 0, "DIR",
            "folder with the texture pack mixIm.dat and, optionally, the\n"
            "tuning document filter.xml; default: beside the build, then\n"
            "the installed ones",
            keep(settings.directory)},
           {"params", 0, "FILE.xml", "tuning document to use instead of the folder's",
            keep(settings.tuning)}}};
}

Resources::Resources(const ResourceSettings& settings)
    : directory_(findDirectory(settings.directory)), prefix_(directory_ + "/") {
  if (settings.tuning.empty() && prefix_.size() <= LUMORA_LONGEST_RESOURCE_DIR) return;
  const std::string own = directory_ + "/" + kTuningName;
  linkPrivately(settings.tuning.empty() ? own : settings.tuning);
  if (!settings.tuning.empty()) readTuning(prefix_ + kTuningName, settings.tuning);
}

void Resources::linkPrivately(const std::string& tuning) {
  std::string name;
  if (!createTemporaryFolder("/tmp/lumora-", name)) {
    throw ResourceError(text("no private folder can be made in /tmp: ", std::strerror(errno)));
  }
  privateFolder_ = {new std::string(name), [](const std::string* folder) {
                      removeTemporary(*folder);
                      delete folder;
                    }};
  prefix_ = name + "/";
  link(directory_ + "/" + kPackName, prefix_ + kPackName);
  link(tuning, prefix_ + kTuningName);
}

void Resources::explainRefusal(const std::string& libraryMessage) const {
  const std::string pack = directory_ + "/" + kPackName;
  std::error_code error;
  const std::uintmax_t bytes = fs::file_size(pack, error);
  std::string reason = libraryMessage;
  if (::access(pack.c_str(), R_OK) != 0) {
    reason = std::strerror(errno);
  } else if (!error && bytes != kPackBytes) {
    reason = text("has ", bytes, " bytes instead of ", kPackBytes);
  }
  throw ResourceError(text(pack, ": is not a usable texture pack: ", reason,
                           "; name another folder with --resources DIR"));
}

}  // namespace lumora::tool
