// TIANMEIKEREN: a warming, brightening mix of the channels in front of the curves.
#include "looks/looks.h"
#include "looks/run_forms.h"

namespace lumora::HWY_NAMESPACE {
namespace {

// R, G, B: plain, then strong
constexpr BuiltInCurves kCurves{
    3,
    {
        {{29, 54, 78, 101, 124, 144, 162, 179, 192, 203, 211, 219, 227, 234, 241, 247, 253}},
        {{33, 52, 69, 86, 102, 121, 141, 158, 174, 187, 198, 208, 216, 224, 232, 239, 246}},
        {{74, 87, 101, 114, 128, 142, 156, 170, 182, 191, 200, 209, 216, 223, 229, 236, 241}},
    },
    {
        {{51, 82, 110, 134, 156, 173, 187, 200, 209, 217, 223, 229, 234, 239, 244, 248, 252}},
        {{51, 71, 88, 107, 124, 144, 163, 177, 190, 200, 208, 216, 222, 228, 234, 239, 244}},
        {{105, 117, 130, 143, 155, 166, 177, 188, 197, 203, 210, 216, 221, 226, 230, 235, 238}},
    }};

// One output row of ColourMixMatrix, in 1/128.
struct MixRow {
  int r, g, b;
};
constexpr MixRow kColourMixMatrix[3] = {{148, -12, 1}, {37, 115, -13}, {47, 18, 70}};

#if HWY_ARCH_X86

// Half the pixels of every 128-bit block, two channels side by side.
struct ChannelPairs {
  V8 redGreen;
  V8 redBlue;
};

// (sum + 64) >> 7, not yet clamped. The red weight is cut so that the sum of either pair fits its
// lane; where both together do not, the lane saturates and the result is above 255 all the same.
template <int kRow>
HWY_INLINE VI16 mixed(const ChannelPairs& c) {
  constexpr MixRow kWeights = kColourMixMatrix[kRow];
  constexpr int kFirstRed = kWeights.r > 127 ? 127 : 0;
  return shiftRightRounding<7>(
      hn::SaturatedAdd(weightedPairs<kFirstRed, kWeights.g>(c.redGreen),
                       weightedPairs<kWeights.r - kFirstRed, kWeights.b>(c.redBlue)));
}

HWY_INLINE Rgb mixChannels(const Rgb& c) {
  const ChannelPairs low{hn::InterleaveLower(d8, c.r, c.g), hn::InterleaveLower(d8, c.r, c.b)};
  const ChannelPairs high{hn::InterleaveUpper(d8, c.r, c.g), hn::InterleaveUpper(d8, c.r, c.b)};
  return {packClamped(mixed<0>(low), mixed<0>(high)), packClamped(mixed<1>(low), mixed<1>(high)),
          packClamped(mixed<2>(low), mixed<2>(high))};
}

#else

HWY_INLINE VU16 scaled(VI16 channel, int weight) {
  const VU16 v = hn::BitCast(du16, channel);
  const int magnitude = weight < 0 ? -weight : weight;
  return magnitude == 1 ? v : hn::Mul(v, hn::Set(du16, static_cast<std::uint16_t>(magnitude)));
}

// min(255, (max(0, sum) + 64) >> 7). The positive terms sum to at most 38760, which needs unsigned
// lanes; the negative ones are taken off with saturation at 0.
HWY_INLINE VI16 mixed(const MixRow& row, VI16 r, VI16 g, VI16 b) {
  const int weight[3] = {row.r, row.g, row.b};
  const VI16 channel[3] = {r, g, b};
  VU16 plus = hn::Zero(du16), minus = hn::Zero(du16);
  for (int c = 0; c < 3; ++c) {
    VU16& sum = weight[c] < 0 ? minus : plus;
    sum = hn::Add(sum, scaled(channel[c], weight[c]));
  }
  const VU16 rounded = hn::Add(hn::SaturatedSub(plus, minus), hn::Set(du16, 64));
  return hn::BitCast(di16, hn::Min(hn::ShiftRight<7>(rounded), hn::Set(du16, 255)));
}

HWY_INLINE Rgb mixChannels(const Rgb& colour) {
  const EvenOdd r = split(colour.r), g = split(colour.g), b = split(colour.b);
  V8 out[3];
  for (int i = 0; i < 3; ++i) {
    const MixRow& row = kColourMixMatrix[i];
    out[i] = join(mixed(row, r.even, g.even, b.even), mixed(row, r.odd, g.odd, b.odd));
  }
  return {out[0], out[1], out[2]};
}

#endif

struct TianmeikerenStep : ColourStep {
  RgbCurves curves;

  explicit TianmeikerenStep(const LookJob& job) : curves(rampedCurves(job, kCurves)) {}

  HWY_INLINE Rgb operator()(const Pixels<Texture>& p) const {
    return CurveLookup(curves, mixChannels(p.colour));
  }
};

}  // namespace

const Look kTianmeikeren = makeLook<TianmeikerenStep>(&kCurves);

}  // namespace lumora::HWY_NAMESPACE
