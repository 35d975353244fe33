// The host's mask of colour fix, stretched to the rows of a stripe.
#pragma once

#include <cstdint>

#include "lumora/filters.h"
#include "platform/stripe_runner.h"

namespace lumora {

// Whether width, height and stride describe rows at all.
bool maskIsSound(const FixColorParam& param);

// Nearest neighbours in 12-bit fixed-point steps. The mask rows of a stripe stand against its
// picture rows; no sample outside the mask is read, whatever its size.
class MaskRows {
 public:
  // share: the stripe's part of the mask's rows, possibly empty: then the mask's last row stands
  // for all. pictureRows: the rows that the share is stretched to. buffer holds widthPixels bytes.
  MaskRows(const FixColorParam& param, Stripe share, int widthPixels, int pictureRows,
           std::uint8_t* buffer);

  // Row y of the stripe, widthPixels samples; good until the next call. y may pass pictureRows: the
  // row step goes on, up to the mask's last row.
  const std::uint8_t* row(int y);

 private:
  void stretch(const std::uint8_t* samples);

  const std::uint8_t* mask_;
  std::int64_t strideBytes_;
  std::int64_t firstRow_;
  std::int64_t lastRow_;
  std::int64_t columns_;
  std::int64_t rowStep_;
  std::int64_t columnStep_;
  int widthPixels_;
  std::uint8_t* buffer_;
  std::int64_t bufferedRow_ = -1;
};

}  // namespace lumora
