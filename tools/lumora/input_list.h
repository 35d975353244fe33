// Lists of pictures' names, for runs that are too large for a command line.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace lumora::tool {

struct InputList {
  std::vector<std::string> names;  // in the list's order, each once
  std::size_t doubled = 0;         // lines that name a file again
};

// The names in a file, or in standard input ("-"): one a line, or each ended by a NUL, which allows
// every name that a file can have. Empty ones do not count. Throws a UsageError for what cannot be
// read or is no list.
InputList readInputList(const std::string& path, bool isNullSeparated);

}  // namespace lumora::tool
