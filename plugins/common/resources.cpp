#include "plugins/common/resources.h"

#include <dlfcn.h>

#include <filesystem>

namespace lumora::plugin {
namespace {

namespace fs = std::filesystem;

fs::path folderOf(const void* code) {
  Dl_info where{};
  if (::dladdr(code, &where) == 0 || where.dli_fname == nullptr) return {};
  std::error_code error;
  const fs::path file = fs::canonical(where.dli_fname, error);
  return error ? fs::path() : file.parent_path();
}

}  // namespace

std::string findResources(const void* code, const char* buildRoot, const char* installed) {
  const fs::path place = folderOf(code);
  std::error_code error;
  const fs::path build = (place / buildRoot).lexically_normal();
  // An installed plug-in does not look into a folder that happens to be there.
  const bool isBuild = fs::exists(build / "CMakeCache.txt", error);
  const fs::path folder = isBuild ? build : (place / installed).lexically_normal();
  return (folder / "").string();
}

}  // namespace lumora::plugin
