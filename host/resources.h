// Where the two resource files lie: found from the place of the program or plug-in, so that a build
// or an installation can be moved.
#pragma once

#include <filesystem>
#include <vector>

namespace lumora::host {

// place: the folder of the program or plug-in. buildRoot, installed: the ways from there to the
// folders of the resource files in a build and in an installation (lumora_find_resources in
// host/CMakeLists.txt says them). The first folder is the one to look into first; the build's only
// counts where a build's cache lies, so that what is installed does not look into a folder that
// happens to be there.
std::vector<std::filesystem::path> resourceFolders(const std::filesystem::path& place,
                                                   const char* buildRoot, const char* installed);

}  // namespace lumora::host
