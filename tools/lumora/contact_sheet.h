// Labelled sheets of small pictures.
#pragma once

#include <string>
#include <vector>
#include <vips/vips8>

namespace lumora::tool {

struct SheetCell {
  std::string label;
  vips::VImage picture;  // 8-bit sRGB with three bands
};

// Arranges the pictures in rows of `columns`, each shrunk or grown to fit the cell, its label under
// it. Pictures of few pixels keep their hard edges.
vips::VImage contactSheet(const std::vector<SheetCell>& cells, int columns, int cellWidth,
                          int cellHeight);

}  // namespace lumora::tool
