#include "effects/colour_fix/colour_fix.h"

#include "effects/colour_fix/colour_fix_kernel.h"
#include "effects/colour_fix/hue_table.h"
#include "effects/colour_fix/mask_rows.h"
#include "platform/stripe_runner.h"

namespace lumora {
namespace {

constexpr int kLeastSaturation = 21;
constexpr int kWholeWeight = 8192;

// The reference colour, as every stripe uses it.
struct Reference {
  FadeRule rule;
  bool isGrey;  // too pale to have a hue: nothing keeps its colour

  explicit Reference(const FixColorParam& param) {
    const Colour colour{param.red, param.green, param.blue};
    const int step = param.tolerance > 0 ? kWholeWeight / param.tolerance : 0;
    rule = {static_cast<std::uint8_t>(hueOf(colour)), param.tolerance,
            static_cast<std::uint16_t>(step)};
    isGrey = saturationOf(colour) < kLeastSaturation;
  }
};

// The weight of grey, 0..8192.
int greyWeight(const Colour& colour, const FadeRule& rule) {
  const int apart = std::abs(hueOf(colour) - rule.hue);
  const int distance = std::min(apart, 255 - apart);
  if (distance <= rule.tolerance) return 0;
  if (distance >= 2 * rule.tolerance) return kWholeWeight;
  return (distance - rule.tolerance) * rule.step;
}

// The pixels at the end of a row that do not fill eight.
void fixTail(std::uint8_t* pixel, int pixels, const std::uint8_t* mask,
             const Reference& reference) {
  for (int x = 0; x < pixels; ++x, pixel += 4) {
    const Colour colour{pixel[0], pixel[1], pixel[2]};
    const bool isGrey = reference.isGrey || (mask != nullptr && mask[x] == 0);
    const int k = isGrey ? kWholeWeight : greyWeight(colour, reference.rule);
    const int grey = roundedGreyOf(colour);
    for (int c = 0; c < 3; ++c) {
      pixel[c] = static_cast<std::uint8_t>((pixel[c] * (kWholeWeight - k) + grey * k) >> 13);
    }
  }
}

void fixRow(std::uint8_t* row, int widthPixels, const std::uint8_t* mask,
            const Reference& reference) {
  const int vectorPixels = widthPixels / 8 * 8;
  if (reference.isGrey) {
    kColourFix().grey(row, vectorPixels);
  } else {
    kColourFix().fix(row, vectorPixels, mask, reference.rule);
  }
  fixTail(row + std::ptrdiff_t{4} * vectorPixels, widthPixels - vectorPixels,
          mask != nullptr ? mask + vectorPixels : nullptr, reference);
}

std::uint64_t planesOf(const FixColorParam& param) { return param.mask != nullptr ? 3 : 2; }

// Hue and grey stay in registers; of a stripe's working memory only one mask row is used. The mask
// step is that of the whole row pairs that the mask's share is stretched to.
void fixRows(const Picture& picture, const FixColorParam& param, const Stripe& rows,
             std::int64_t maskedRows, const Stripe& maskShare, std::uint8_t* work) {
  const Reference reference(param);
  const auto width = static_cast<std::uint64_t>(picture.widthPixels);
  std::uint8_t* const buffer =
      work + planesOf(param) * static_cast<std::uint64_t>(rows.first) * width;
  MaskRows maskRows(param, maskShare, picture.widthPixels, static_cast<int>(maskedRows), buffer);
  const int count = static_cast<int>(rows.count);
  for (int y = 0; y < count; ++y) {
    fixRow(picture.row(rows.first + y), picture.widthPixels,
           param.mask != nullptr ? maskRows.row(y) : nullptr, reference);
  }
}

}  // namespace

std::uint64_t colourFixBytes(const Picture& picture, const FixColorParam& param) {
  return planesOf(param) * static_cast<std::uint64_t>(picture.widthPixels) *
         static_cast<std::uint64_t>(picture.heightRows);
}

Status FilterFixColor(const Picture& picture, const FixColorParam& param, std::uint8_t* work,
                      Threads threads) {
  if (param.mask != nullptr && !maskIsSound(param)) return Status::kBadArgument;
  const Stripes maskShares = splitRowPairs(param.maskHeight);
  const bool isFour = threads == Threads::kFour;
  return overStripes(threads, picture.heightRows, splitRowPairs, [&](const Stripe& share, int k) {
    Stripe rows = share;
    // An odd last row continues the last stripe.
    if (isFour && k == kStripeCount - 1) rows.count += picture.heightRows % 2;
    fixRows(picture, param, rows, share.count, isFour ? maskShares[k] : Stripe{0, param.maskHeight},
            work);
  });
}

}  // namespace lumora
