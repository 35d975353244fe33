// Files and folders that must not outlive an interrupted run.
#pragma once

#include <string>

namespace lumora::tool {

// From now on an interrupt (Ctrl-C, termination, hang-up) first removes them and
// then ends the process by that signal. Call it before anything starts a thread.
void removeTemporariesOnInterrupt();

// Creates an empty file of an unused name that begins with `stem`; returns its descriptor and puts
// its name into path, or -1 with errno set.
int createTemporaryFile(const std::string& stem, std::string& path);
// The same for a folder that only this user may enter; false with errno set.
bool createTemporaryFolder(const std::string& stem, std::string& path);
// Gives the file its final name; false with errno set.
bool renameTemporaryFile(const std::string& path, const std::string& finalPath);
// A folder goes with everything in it.
void removeTemporary(const std::string& path);

}  // namespace lumora::tool
