#include "pipeline/strength_blend.h"

#include "pipeline/blend_kernel.h"
#include "pipeline/stripe_runner.h"

namespace lumora {
namespace {

struct BlendStripe {
  const std::uint8_t* copy;
  std::uint8_t* picture;
  std::size_t bytes;
  int weight;
};

}  // namespace

void FilterBlend(const std::uint8_t* copy, std::uint8_t* picture, std::size_t bytes, int weight) {
  kBlend()(copy, picture, bytes, weight);
}

Status FilterBlend_multiThread(const std::uint8_t* copy, std::uint8_t* picture, std::size_t bytes,
                               int weight) {
  const Stripes stripes = splitBytes(static_cast<std::int64_t>(bytes));
  std::array<BlendStripe, kStripeCount> records;
  for (int k = 0; k < kStripeCount; ++k) {
    const auto first = static_cast<std::size_t>(stripes[k].first);
    records[k] = {copy + first, picture + first, static_cast<std::size_t>(stripes[k].count),
                  weight};
  }
  return StripeRunner::run<BlendStripe>(
      [](const BlendStripe& s) { FilterBlend(s.copy, s.picture, s.bytes, s.weight); }, records);
}

}  // namespace lumora
