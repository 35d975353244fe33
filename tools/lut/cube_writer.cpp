#include <charconv>

#include "lut/cube_file.h"

namespace lumora::lut {
namespace {

// Not by printf: its decimal point is the locale's.
void append(std::string& text, float value) {
  char digits[64];
  const auto end =
      std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed, 6).ptr;
  text.append(digits, end);
}

void append(std::string& text, const Triple& triple) {
  for (int channel = 0; channel < 3; ++channel) {
    append(text, triple[channel]);
    text += channel < 2 ? ' ' : '\n';
  }
}

}  // namespace

std::string writeCube(const Lut& lut, const std::string& title,
                      const std::vector<std::string>& comments) {
  std::string text = "TITLE \"" + title + "\"\n";
  for (const std::string& comment : comments) text += "# " + comment + '\n';
  text += (lut.is1d ? "LUT_1D_SIZE " : "LUT_3D_SIZE ") + std::to_string(lut.size) + '\n';
  text += "DOMAIN_MIN ";
  append(text, lut.lowest);
  text += "DOMAIN_MAX ";
  append(text, lut.highest);
  for (const Triple& entry : lut.entries) append(text, entry);
  return text;
}

}  // namespace lumora::lut
