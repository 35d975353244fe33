#include "effects/colour_fix/mask_rows.h"

#include <algorithm>
#include <cassert>

#include "effects/colour_fix/stretch_kernel.h"

namespace lumora {
namespace {

// from / to in 12-bit fixed point, in the single precision that decides its last bit. to = 0 has
// no row to step to.
std::int64_t stepOf(std::int64_t from, int to) {
  if (to == 0) return 0;
  const float scaled = static_cast<float>(from) * static_cast<float>(kWholeStretchStep);
  return static_cast<std::int64_t>(scaled / static_cast<float>(to));
}

}  // namespace

bool maskIsSound(const FixColorParam& param) {
  return param.maskWidth >= 1 && param.maskHeight >= 1 && param.maskStride >= param.maskWidth;
}

MaskRows::MaskRows(const FixColorParam& param, Stripe share, int widthPixels, int pictureRows,
                   std::uint8_t* buffer)
    : mask_(param.mask),
      strideBytes_(param.maskStride),
      firstRow_(share.count > 0 ? share.first : std::int64_t{param.maskHeight} - 1),
      lastRow_(std::int64_t{param.maskHeight} - 1),
      columns_(param.maskWidth),
      rowStep_(stepOf(share.count, pictureRows)),
      columnStep_(stepOf(param.maskWidth, widthPixels)),
      widthPixels_(widthPixels),
      buffer_(buffer) {}

const std::uint8_t* MaskRows::row(int y) {
  // Steps are below 2^43 and places below 2^15, so the products fit.
  const std::int64_t maskRow = std::min(firstRow_ + ((y * rowStep_) >> kStretchStepBits), lastRow_);
  const std::uint8_t* const samples = mask_ + maskRow * strideBytes_;
  if (columnStep_ == kWholeStretchStep) return samples;
  if (maskRow != bufferedRow_) stretch(samples);
  bufferedRow_ = maskRow;
  return buffer_;
}

// The last place is inside the row: it is 1 / width of the row short of its end, and the roundings
// of the step are some 2^-22 of it.
void MaskRows::stretch(const std::uint8_t* samples) {
  assert(((widthPixels_ - 1) * columnStep_) >> kStretchStepBits < columns_);
  int x = 0;
  if (columnStep_ <= kWidestKernelStep && columns_ >= kShortestKernelRow) {
    kStretchRow()(samples, columns_, static_cast<std::uint32_t>(columnStep_), widthPixels_,
                  buffer_);
    x = widthPixels_ / 8 * 8;
  }
  for (; x < widthPixels_; ++x) buffer_[x] = samples[(x * columnStep_) >> kStretchStepBits];
}

}  // namespace lumora
