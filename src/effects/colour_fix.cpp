#include "effects/colour_fix.h"

#include "effects/colour_fix_kernel.h"
#include "effects/hue_table.h"
#include "effects/mask_rows.h"
#include "pipeline/stripe_runner.h"

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

// Hue and grey stay in registers; of the stripe's working memory only one mask row is used.
struct FixStripe {
  const Picture* picture;
  const FixColorParam* param;
  std::uint8_t* work;
  int firstRow;
  int rows;
  int maskedRows;  // the rows that the mask share is stretched to
  Stripe maskShare;
};

void fixStripe(const FixStripe& stripe) {
  const Picture& picture = *stripe.picture;
  const Reference reference(*stripe.param);
  const bool masked = stripe.param->mask != nullptr;
  MaskRows maskRows(*stripe.param, stripe.maskShare, picture.widthPixels, stripe.maskedRows,
                    stripe.work);
  for (int y = 0; y < stripe.rows; ++y) {
    fixRow(picture.row(stripe.firstRow + y), picture.widthPixels,
           masked ? maskRows.row(y) : nullptr, reference);
  }
}

bool isRefused(const FixColorParam& param) { return param.mask != nullptr && !maskIsSound(param); }

std::uint64_t planesOf(const FixColorParam& param) { return param.mask != nullptr ? 3 : 2; }

}  // namespace

std::uint64_t colourFixBytes(const Picture& picture, const FixColorParam& param) {
  return planesOf(param) * static_cast<std::uint64_t>(picture.widthPixels) *
         static_cast<std::uint64_t>(picture.heightRows);
}

Status FilterFixColor_RGBA(const Picture& picture, const FixColorParam& param, std::uint8_t* work) {
  if (isRefused(param)) return Status::kBadArgument;
  fixStripe(
      {&picture, &param, work, 0, picture.heightRows, picture.heightRows, {0, param.maskHeight}});
  return Status::kOk;
}

Status FilterFixColor_multiThread(const Picture& picture, const FixColorParam& param,
                                  std::uint8_t* work) {
  if (isRefused(param)) return Status::kBadArgument;
  const Stripes shares = splitRowPairs(picture.heightRows);
  const Stripes maskShares = splitRowPairs(param.maskHeight);
  std::array<FixStripe, kStripeCount> stripes;
  for (int k = 0; k < kStripeCount; ++k) {
    const auto first = static_cast<int>(shares[k].first), rows = static_cast<int>(shares[k].count);
    std::uint8_t* const part = work + planesOf(param) * static_cast<std::uint64_t>(first) *
                                          static_cast<std::uint64_t>(picture.widthPixels);
    stripes[k] = {&picture, &param, part, first, rows, rows, maskShares[k]};
  }
  // The mask step stays that of the whole pairs; an odd last row only continues it.
  stripes[kStripeCount - 1].rows += picture.heightRows % 2;
  return StripeRunner::run<FixStripe>(fixStripe, stripes);
}

}  // namespace lumora
