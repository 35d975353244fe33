// The checked-in tables, line by line as scripts/tables writes them.
#pragma once

#include <string>
#include <vector>

namespace lumora::test {

// A line per mode, format and path of textures of the default pack: a digest of the result for
// every picture size and strength, or for the first few where calls are slow. On the vector level
// in use; where the count of threads does not matter every call takes the form asked for.
// resourceDir ends in a slash.
std::vector<std::string> digestTable(const std::string& resourceDir, bool onCaller, bool reduced);

// For every mode, format, path of textures and count of threads - those that agree together - the
// status, the starts of workers and the sizes of the requests; then, for every fault alone, the
// status, how many workers were started, and the error messages. MODE, FORMAT, PICTURE (its bytes)
// and PIXELS stand for the call's own, NO COPY for its format's message.
std::vector<std::string> failureTable();

}  // namespace lumora::test
