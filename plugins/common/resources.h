// Where a plug-in finds the resource files.
#pragma once

#include <string>

namespace lumora::plugin {

// The folder, with "/" behind it, that comes first in host/resources.h. code: anything in the
// plug-in.
std::string findResources(const void* code, const char* buildRoot, const char* installed);

}  // namespace lumora::plugin
