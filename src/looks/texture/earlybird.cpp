// EARLYBIRD: a faded, warm print whose brightness the texture governs.
#include "looks/texture/texture_step.h"

namespace lumora::HWY_NAMESPACE {
namespace {

constexpr int kCoarseKnotCount = 9;

// Outputs at the inputs 0, 32, 64, ..., 256.
struct CoarseToneCurve {
  std::uint8_t at[kCoarseKnotCount];
};

// A channel's curves: the base is the colour where the texture is 0, the lift is scaled by the
// texture and added.
struct ChannelCurves {
  CoarseToneCurve base;
  CoarseToneCurve lift;
};

// R, G, B
constexpr ChannelCurves kPlain[3] = {
    {{{29, 29, 29, 47, 76, 103, 131, 157, 185}}, {{1, 39, 81, 103, 112, 101, 90, 81, 70}}},
    {{{0, 0, 0, 12, 41, 71, 101, 131, 161}}, {{1, 42, 84, 114, 129, 123, 111, 100, 90}}},
    {{{18, 18, 18, 18, 30, 51, 73, 94, 113}}, {{1, 30, 61, 91, 106, 113, 115, 105, 99}}},
};
constexpr ChannelCurves kStrong[3] = {
    {{{29, 29, 29, 29, 34, 53, 78, 100, 125}}, {{37, 86, 139, 170, 185, 174, 158, 145, 129}}},
    {{{0, 0, 0, 0, 0, 2, 16, 44, 72}}, {{2, 55, 110, 168, 200, 211, 208, 191, 176}}},
    {{{18, 18, 18, 18, 18, 18, 18, 18, 23}}, {{18, 45, 75, 102, 125, 150, 168, 173, 172}}},
};

// The tables of a channel, by the high nibble of the input: every knot and step stands twice. The
// lift's half steps are signed: lifts rise and fall.
struct ChannelTables {
  V8 baseKnots, baseSteps;
  V8 liftKnots, liftHalfSteps;

  HWY_NOINLINE ChannelTables(int channel, int ratio) {
    const ChannelCurves& plain = kPlain[channel];
    const ChannelCurves& strong = kStrong[channel];
    const CoarseToneCurve b = RampCurve(plain.base, strong.base, strongWeight(ratio));
    const CoarseToneCurve l = RampCurve(plain.lift, strong.lift, strongWeight(ratio));
    HWY_ALIGN std::uint8_t table[4][16];
    for (int j = 0; j < 16; ++j) {
      const int knot = j / 2;
      table[0][j] = b.at[knot];
      table[1][j] = static_cast<std::uint8_t>(b.at[knot + 1] - b.at[knot]);
      table[2][j] = l.at[knot];
      table[3][j] = static_cast<std::uint8_t>((l.at[knot + 1] - l.at[knot]) >> 1);
    }
    baseKnots = hn::LoadDup128(d8, table[0]);
    baseSteps = hn::LoadDup128(d8, table[1]);
    liftKnots = hn::LoadDup128(d8, table[2]);
    liftHalfSteps = hn::LoadDup128(d8, table[3]);
  }
};

// With i = m >> 5 and f = m mod 32: base + ((step * f + 16) >> 5), and to it the texture's share
// ((lift * t + 128) >> 8) of lift = (16 knot + halfStep * f + 8) >> 4. With these curves what is
// added to the base's knot is at most 239, and the lift lies within 1..211.
HWY_INLINE V8 coarseLookup(const ChannelTables& tables, V8 m, const EvenOdd& texture128) {
  const V8 index = highNibble(m);
  const Factors f = factors(hn::And(m, hn::Set(d8, 31)));

  const EvenOdd step = products(hn::TableLookupBytes(tables.baseSteps, index), f);
  const EvenOdd halfStep = products(f, hn::TableLookupBytes(tables.liftHalfSteps, index));
  const EvenOdd lift =
      add(split(hn::TableLookupBytes(tables.liftKnots, index)), shiftRightRounding<4>(halfStep));
  const EvenOdd added = add(shiftRightRounding<5>(step), mulFixedPoint15(lift, texture128));
  return hn::SaturatedAdd(hn::TableLookupBytes(tables.baseKnots, index), join(added));
}

// A quarter of the way toward grey, by two half-adds that round up.
HWY_INLINE V8 towardGrey(V8 channel, V8 grey) {
  return hn::AverageRound(hn::AverageRound(grey, channel), channel);
}

HWY_INLINE Rgb towardGrey(const Rgb& c, V8 grey) {
  return {towardGrey(c.r, grey), towardGrey(c.g, grey), towardGrey(c.b, grey)};
}

struct EarlybirdStep : TextureStep {
  ChannelTables r, g, b;

  explicit EarlybirdStep(const LookJob& job) : r(0, job.ratio), g(1, job.ratio), b(2, job.ratio) {}

  struct Faded {
    Rgb colour;
    V8 texels;
  };

  HWY_INLINE Faded faded(const Pixels<Texture>& p) const {
    return {towardGrey(p.colour, p.luma), p.texels};
  }
  HWY_INLINE Rgb graded(const Faded& m) const {
    const EvenOdd texture128 = times128(m.texels);
    return {coarseLookup(r, m.colour.r, texture128), coarseLookup(g, m.colour.g, texture128),
            coarseLookup(b, m.colour.b, texture128)};
  }
  using Stages = StageList<&EarlybirdStep::faded, &EarlybirdStep::graded>;
};

}  // namespace

const Look kEarlybird = makeLook<EarlybirdStep>();

}  // namespace lumora::HWY_NAMESPACE
