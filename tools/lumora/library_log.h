// The library's log lines. The tool supplies the log function, so that it can phrase errors itself
// and show the lines only when asked.
#pragma once

#include <string>
#include <vector>

namespace lumora::tool {

// Prints every line to standard error from now on.
void showLibraryLog();

// The error lines of this thread's calls since the last time.
std::vector<std::string> takeLibraryErrors();

}  // namespace lumora::tool
