// The text form of tables: .cube files.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "lut/lut.h"

namespace lumora::lut {

// What is wrong with a file, and in which line of it; line 0 means the whole.
struct CubeFault {
  int line = 0;
  std::string reason;  // empty: nothing

  explicit operator bool() const { return !reason.empty(); }
};

// Reads what programs write: comments and blank lines anywhere, any line ends, a byte order mark,
// titles with and without quotes, domains in both spellings. Words that are not known are passed
// over. Numbers have a decimal point, whatever the locale.
CubeFault readCube(std::string_view text, Lut& lut);

// comments: one line each.
std::string writeCube(const Lut& lut, const std::string& title,
                      const std::vector<std::string>& comments);

}  // namespace lumora::lut
