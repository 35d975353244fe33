// What every call asks for, and what it answers when one request or one worker fails.
#pragma once

#include <string>
#include <vector>

namespace lumora::test {

// A line per mode, format, path of textures and count of threads with the sizes of its requests;
// then, for every fault alone, the status and the formats of the error messages.
std::vector<std::string> failureTable();

}  // namespace lumora::test
