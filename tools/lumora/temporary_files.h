// Files and folders that must not outlive an interrupted run.
#pragma once

#include <string>

namespace lumora::tool {

// From now on every signal that asks the process to end (Ctrl-C, termination, hang-up, time used up
// and the like; not those of a crash, nor SIGKILL) first removes them and then ends it. Exceeding
// the limit for the size of files becomes a failure to write. Call it before anything starts a
// thread.
void removeTemporariesOnInterrupt();

// Creates an empty file of an unused name that begins with `stem`; returns its descriptor and puts
// its name into path, or -1 with errno set.
int createTemporaryFile(const std::string& stem, std::string& path);
// The same for a folder that only this user may enter; false with errno set.
bool createTemporaryFolder(const std::string& stem, std::string& path);
// Gives the file its final name; false with errno set. A file that has this name is kept under the
// name `backup` or, if that is empty, replaced; unless `replaces` both names must be free (EEXIST).
bool renameTemporaryFile(const std::string& path, const std::string& finalPath, bool replaces,
                         const std::string& backup);
// A folder goes with everything in it.
void removeTemporary(const std::string& path);

}  // namespace lumora::tool
