#include "host/resources.h"

namespace lumora::host {

std::vector<std::filesystem::path> resourceFolders(const std::filesystem::path& place,
                                                   const char* buildRoot, const char* installed) {
  std::vector<std::filesystem::path> folders;
  const std::filesystem::path build = (place / buildRoot).lexically_normal();
  std::error_code error;
  if (std::filesystem::exists(build / "CMakeCache.txt", error)) folders.push_back(build);
  folders.push_back((place / installed).lexically_normal());
  return folders;
}

}  // namespace lumora::host
