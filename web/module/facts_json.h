// The facts of the modes and their settings as JSON.
#pragma once

#include <string>

namespace lumora::web {

// {"settings": [...], "looks": [...], "longestSide": ..., ...}: settings by their number, looks by
// mode from 1 on.
std::string factsJson();

}  // namespace lumora::web
