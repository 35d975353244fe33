// Where a plug-in finds the resource files: from its own place, so that what is installed can be
// moved.
#pragma once

#include <string>

namespace lumora::plugin {

// code: anything in the plug-in. buildRoot, installed: the ways from the plug-in's folder to that
// of the resource files, in a build and in an installation. Returns the folder with "/" behind it,
// the installed one where neither holds a texture pack.
std::string findResources(const void* code, const char* buildRoot, const char* installed);

}  // namespace lumora::plugin
