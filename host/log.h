// The library's log lines, kept for whoever phrases errors. Linking this takes the place of the
// library's own function, which writes to standard error.
#pragma once

#include <string>
#include <vector>

namespace lumora::host {

// Is given every line, with its priority (4 information, 6 error), in the thread that logs.
using LogSink = void (*)(int priority, const char* line);
// Null, the default, for none.
void setLogSink(LogSink sink);

// The error lines of this thread's calls since the last time: plain text, one line each, without
// the library's own tag.
std::vector<std::string> takeErrors();

}  // namespace lumora::host
