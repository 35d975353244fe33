// Applies tables of colours to pictures.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "lut/lut.h"
#include "lut/tetrahedra.h"

namespace lumora::lut {

// A table made ready for pictures. One may serve several threads.
class Interpolation {
 public:
  explicit Interpolation(const Lut& lut);

  // Rewrites RGBA rows; alpha stays. strength: 0 mixes the result half with the picture, 16 and
  // above give it whole.
  void apply(std::uint8_t* pixels, int widthPixels, int rows, std::ptrdiff_t strideBytes,
             int strength) const;

 private:
  void applyToRow(std::uint8_t* row, int pixels) const;

  // 1D: what becomes of each level of each channel.
  std::vector<std::uint8_t> curves_;
  // 3D.
  int size_ = 0;
  std::vector<Diagonal> diagonals_;
  std::vector<std::uint16_t> places_;  // empty: colours are 0..1
};

}  // namespace lumora::lut
