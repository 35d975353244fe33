#include "plugins/common/resources.h"

#include <dlfcn.h>

#include "host/resources.h"

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
  return (host::resourceFolders(folderOf(code), buildRoot, installed).front() / "").string();
}

}  // namespace lumora::plugin
