#include "looks/reference_looks.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "looks/looks.h"

namespace lumora::test {
namespace {

using Curves = std::array<Knots, 3>;

constexpr Knots kIdentity{
    {0, 16, 32, 48, 64, 80, 96, 112, 128, 144, 160, 176, 192, 208, 224, 240, 255}};

// Between knots a curve is linear; the step between two is taken modulo 256. Inputs have `fraction`
// bits behind the knot's number, and all but one look round.
int curveLookup(const Knots& knots, int x, int fraction = 4, bool rounds = true) {
  const int i = x >> fraction, f = x & ((1 << fraction) - 1);
  const int step = (knots.at[i + 1] - knots.at[i]) & 255;
  const int half = rounds ? 1 << (fraction - 1) : 0;
  return clampByte(knots.at[i] + (((step * f + half) >> fraction) & 255));
}

// Of 16 parts the weight belongs to the second curve.
Knots mixedKnots(const Knots& a, const Knots& b, int weight) {
  Knots out{};
  for (int j = 0; j < kKnotCount; ++j) {
    out.at[j] = toByte(((16 - weight) * a.at[j] + weight * b.at[j] + 8) >> 4);
  }
  return out;
}

Knots rampCurve(const Knots& base, const Knots& strong, int ratio) {
  return ratio <= 16 ? base : mixedKnots(base, strong, ratio - 16);
}

bool isStored(const ReferenceTuning& tuning) {
  return tuning.block != nullptr && *tuning.block == 0;
}

// Channels without a curve of their own share the first.
const Knots& strongCurve(const Look& look, int channel) {
  return look.builtIn->strong[std::min(channel, look.builtIn->count - 1)];
}

// The curves in use before any ramp.
Curves baseCurves(const Look& look, const ReferenceTuning& tuning, int firstStored = 1) {
  Curves curves;
  for (int c = 0; c < 3; ++c) {
    const int k = std::min(c, look.builtIn->count - 1);
    curves[c] = look.builtIn->plain[k];
    if (!isStored(tuning)) continue;
    ToneCurve stored;
    std::memcpy(&stored, tuning.block + firstStored + 24 * k, sizeof stored);
    curves[c] = stored.knots();
  }
  return curves;
}

Curves rampedCurves(const Look& look, const ReferenceTuning& tuning, int firstStored = 1) {
  Curves curves = baseCurves(look, tuning, firstStored);
  for (int c = 0; c < 3; ++c) {
    curves[c] = rampCurve(curves[c], strongCurve(look, c), tuning.ratio);
  }
  return curves;
}

// Stored curves only, up to the midpoint.
Curves halfRampedCurves(const Look& look, const ReferenceTuning& tuning) {
  Curves curves = baseCurves(look, tuning);
  if (tuning.ratio <= 16 || !isStored(tuning)) return curves;
  for (int c = 0; c < 3; ++c) {
    const Knots& strong = strongCurve(look, c);
    for (int j = 0; j < kKnotCount; ++j) {
      const int sum = (48 - tuning.ratio) * curves[c].at[j] + (tuning.ratio - 16) * strong.at[j];
      curves[c].at[j] = toByte((sum + 16) >> 5);
    }
  }
  return curves;
}

template <class Channel>
Colour eachChannel(const Colour& c, Channel channel) {
  return {channel(0, c.r), channel(1, c.g), channel(2, c.b)};
}

// The looks without a texture

Colour toLuma(const ReferencePixel& p) { return {p.luma, p.luma, p.luma}; }
Colour toColour(const ReferencePixel& p) { return p.colour; }

int mixedChannel(int sum) { return std::min(255, (std::max(0, sum) + 64) >> 7); }
Colour toMixedChannels(const ReferencePixel& p) {
  const Colour& c = p.colour;
  return {mixedChannel(148 * c.r + c.b - 12 * c.g), mixedChannel(37 * c.r + 115 * c.g - 13 * c.b),
          mixedChannel(47 * c.r + 18 * c.g + 70 * c.b)};
}

PixelFunction throughCurves(const Curves& curves, Colour (*before)(const ReferencePixel&)) {
  return [=](const ReferencePixel& p) {
    return eachChannel(before(p), [&](int c, int v) { return curveLookup(curves[c], v); });
  };
}

template <const Look& (*kLook)(), Colour (*kBefore)(const ReferencePixel&) = toColour>
PixelFunction curves(const ReferenceTuning& tuning) {
  return throughCurves(rampedCurves(kLook(), tuning), kBefore);
}

// The glow's curve stage: two bytes that are not read come before its stored curves, and below the
// plain strength the curves go back to the straight line.
PixelFunction meishimenghuan(const ReferenceTuning& tuning) {
  Curves curves = rampedCurves(kMeishimenghuan(), tuning, 3);
  for (Knots& curve : curves) {
    if (tuning.ratio < 16) curve = mixedKnots(kIdentity, curve, tuning.ratio);
  }
  return throughCurves(curves, toColour);
}

// A texture value through the texture's own curve, which is the identity up to strength 16.
class TextureTone {
 public:
  TextureTone(const Knots& strong, int ratio)
      : curve_(rampCurve(kIdentity, strong, ratio)), isCurved_(ratio > 16) {}
  int operator()(int t) const { return isCurved_ ? curveLookup(curve_, t) : t; }

 private:
  Knots curve_;
  bool isCurved_;
};

// EARLYBIRD

constexpr int kEarlybirdBase[2][3][9] = {{{29, 29, 29, 47, 76, 103, 131, 157, 185},
                                          {0, 0, 0, 12, 41, 71, 101, 131, 161},
                                          {18, 18, 18, 18, 30, 51, 73, 94, 113}},
                                         {{29, 29, 29, 29, 34, 53, 78, 100, 125},
                                          {0, 0, 0, 0, 0, 2, 16, 44, 72},
                                          {18, 18, 18, 18, 18, 18, 18, 18, 23}}};
constexpr int kEarlybirdLift[2][3][9] = {{{1, 39, 81, 103, 112, 101, 90, 81, 70},
                                          {1, 42, 84, 114, 129, 123, 111, 100, 90},
                                          {1, 30, 61, 91, 106, 113, 115, 105, 99}},
                                         {{37, 86, 139, 170, 185, 174, 158, 145, 129},
                                          {2, 55, 110, 168, 200, 211, 208, 191, 176},
                                          {18, 45, 75, 102, 125, 150, 168, 173, 172}}};

PixelFunction earlybird(const ReferenceTuning& tuning) {
  const int ratio = std::max(tuning.ratio, 16);
  const auto knot = [ratio](const int(&set)[2][3][9], int c, int j) {
    return ((ratio - 16) * set[1][c][j] + (32 - ratio) * set[0][c][j] + 8) >> 4;
  };
  return [knot](const ReferencePixel& p) {
    return eachChannel(p.colour, [&](int c, int v) {
      const int half = (p.luma + v + 1) >> 1, m = (half + v + 1) >> 1;
      const int i = m >> 5, f = m & 31;
      const int b0 = knot(kEarlybirdBase, c, i), b1 = knot(kEarlybirdBase, c, i + 1);
      const int base = clampByte(b0 + (((f * ((b1 - b0) & 255) + 16) >> 5) & 255));
      const int l0 = knot(kEarlybirdLift, c, i), l1 = knot(kEarlybirdLift, c, i + 1);
      const int lift = clampByte((16 * l0 + f * ((l1 - l0) >> 1) + 8) >> 4);
      return clampByte(base + ((lift * *p.texel + 128) >> 8));
    });
  };
}

// LAODIANYING

constexpr Knots kStrongShade{
    {0, 9, 21, 34, 48, 63, 78, 94, 111, 128, 145, 163, 181, 199, 218, 236, 255}};

Colour tintOf(const ReferenceTuning& tuning) {
  const int ratio = tuning.ratio;
  if (ratio > 16) {
    return {255, (245 * (ratio - 16) + 250 * (32 - ratio) + 8) >> 4,
            (136 * (ratio - 16) + 172 * (32 - ratio) + 8) >> 4};
  }
  if (!isStored(tuning)) return {255, 250, 172};
  return {tuning.block[1], tuning.block[2], tuning.block[3]};
}

PixelFunction laodianying(const ReferenceTuning& tuning) {
  return [tint = tintOf(tuning),
          shade = TextureTone(kStrongShade, tuning.ratio)](const ReferencePixel& p) {
    const int v = (p.luma * shade(*p.texel) + (p.isNv ? 0 : 128)) >> 8;
    return Colour{(v * tint.r + 128) >> 8, (v * tint.g + 128) >> 8, (v * tint.b + 128) >> 8};
  };
}

// HUDSON

int overlayTexture(int c, int t) {
  return c <= 128 ? (c * t) >> 7 : 255 - (((255 - c) * (255 - t)) >> 7);
}

PixelFunction hudson(const ReferenceTuning& tuning) {
  return [curves = baseCurves(kHudson(), tuning), ratio = tuning.ratio](const ReferencePixel& p) {
    return eachChannel(p.colour, [&](int c, int v) {
      const int once = curveLookup(curves[c], overlayTexture(v, *p.texel));
      if (ratio <= 16) return once;
      const int twice = curveLookup(curves[c], overlayTexture(once, *p.texel));
      return ((32 - ratio) * once + (ratio - 16) * twice + 8) >> 4;
    });
  };
}

// XPRO2

constexpr Knots kXpro2StrongTexture{
    {0, 19, 37, 56, 74, 93, 111, 130, 148, 167, 186, 204, 223, 241, 255, 255, 255}};

PixelFunction xpro2(const ReferenceTuning& tuning) {
  return [curves = rampedCurves(kXpro2(), tuning),
          tone = TextureTone(kXpro2StrongTexture, tuning.ratio)](const ReferencePixel& p) {
    const int darkening = (179 * tone(*p.texel) + 64) >> 7;
    return eachChannel(p.colour, [&](int c, int v) {
      return curveLookup(curves[c], std::max(4 * v - darkening, 0), 6);
    });
  };
}

// LOFI

int overlayBlend(int c, int t) {
  return c <= 85 ? (c * t) >> 7 : 255 - (((255 - c) * (380 - t)) >> 8);
}

PixelFunction lofi(const ReferenceTuning& tuning) {
  return
      [curves = halfRampedCurves(kLofi(), tuning), ratio = tuning.ratio](const ReferencePixel& p) {
        const int t = *p.texel;
        const int second = ((ratio - 16) * t + 124 * (32 - ratio) + 2000) >> 5;
        return eachChannel(p.colour, [&](int c, int v) {
          const int once = overlayBlend(curveLookup(curves[c], v), t);
          return ratio > 16 ? overlayBlend(once, second & 255) : once;
        });
      };
}

// YUNDUAN

constexpr Knots kYunduanStrongTexture{
    {0, 0, 0, 16, 38, 61, 83, 106, 128, 150, 173, 195, 218, 240, 255, 255, 255}};

int softLightTexture(int c, int t) {
  const int m = std::max(256 * t - t * c + 128 * c - 16384, 0);
  return clampByte((((m + 32) >> 6) * c + 128) >> 8);
}

PixelFunction yunduan(const ReferenceTuning& tuning) {
  return [curves = rampedCurves(kYunduan(), tuning),
          tone = TextureTone(kYunduanStrongTexture, tuning.ratio)](const ReferencePixel& p) {
    const int t = tone(*p.texel);
    return eachChannel(
        p.colour, [&](int c, int v) { return curveLookup(curves[c], softLightTexture(v, t)); });
  };
}

// LIANGHONG

constexpr Knots kTone{
    {0, 16, 33, 51, 70, 91, 112, 134, 155, 174, 191, 206, 219, 230, 240, 249, 255}};
constexpr Knots kStrongTone{
    {0, 16, 34, 55, 78, 105, 134, 162, 186, 204, 218, 229, 237, 243, 249, 252, 255}};
constexpr Knots kLianghongStrongTexture{
    {0, 28, 48, 67, 84, 101, 117, 132, 147, 161, 176, 190, 203, 217, 230, 243, 255}};

PixelFunction lianghong(const ReferenceTuning& tuning) {
  return [curve = rampCurve(kTone, kStrongTone, tuning.ratio),
          tone = TextureTone(kLianghongStrongTexture, tuning.ratio)](const ReferencePixel& p) {
    return eachChannel(p.colour, [&](int c, int v) {
      return curveLookup(curve, clampByte(v + (((255 - v) * tone(p.texel[c]) + 128) >> 8)));
    });
  };
}

// MYFAIR

constexpr Knots kMyfairStrongTexture{
    {0, 0, 0, 24, 48, 72, 96, 120, 144, 168, 192, 216, 240, 255, 255, 255, 255}};

int truncCurveLookup(const Knots& knots, int x) { return curveLookup(knots, x, 4, false); }

int softOverlay(int a, int b) {
  const int v =
      a <= 144 ? (a * b * 43 + 2048) >> 12 : 255 - (((255 - a) * (173 - b) * 53 + 2048) >> 12);
  return clampByte(v);
}

PixelFunction myfair(const ReferenceTuning& tuning) {
  const bool isStrong = tuning.ratio > 16;
  return [curves = halfRampedCurves(kMyfair(), tuning), isStrong,
          textureCurve =
              rampCurve(kIdentity, kMyfairStrongTexture, tuning.ratio)](const ReferencePixel& p) {
    const int t = isStrong ? truncCurveLookup(textureCurve, *p.texel) : *p.texel;
    const int sum = p.colour.r + p.colour.g + p.colour.b;
    return eachChannel(p.colour, [&](int c, int v) {
      const int excess = std::max(v - std::min(sum - v, 255), 0);
      const int boosted = std::min(v + (excess >> 3), 255);
      const int softened = std::min(t + (((excess * std::max(144 - t, 0)) >> 8) >> 2), 255);
      return softOverlay(truncCurveLookup(curves[c], boosted), softened);
    });
  };
}

constexpr ReferenceConversion kTo128{127, 128};
constexpr ReferenceConversion kFrom128To128{128, 128};

constexpr ReferenceLook kReferenceLooks[] = {
    {"HEIBAI", kHeibai, [](const ReferenceTuning&) { return PixelFunction(toLuma); }},
    {"MORAN", kMoran, curves<kMoran, toLuma>},
    {"RIXI", kRixi, curves<kRixi>},
    {"FUGU", kFugu, curves<kFugu>},
    {"VALENCIA", kValencia, curves<kValencia>},
    {"NUANYANGYANG", kNuanyangyang, curves<kNuanyangyang>},
    {"TIANMEIKEREN", kTianmeikeren, curves<kTianmeikeren, toMixedChannels>},
    {"MEISHIMENGHUAN", kMeishimenghuan, meishimenghuan, {}, false},
    {"LAODIANYING", kLaodianying, laodianying, {127, 128, true}, false},
    {"LIANGHONG", kLianghong, lianghong},
    {"YUNDUAN", kYunduan, yunduan, kTo128},
    {"EARLYBIRD", kEarlybird, earlybird, kTo128},
    {"XPRO2", kXpro2, xpro2, kTo128},
    {"HUDSON", kHudson, hudson, kFrom128To128},
    {"MYFAIR", kMyfair, myfair, kFrom128To128},
    {"LOFI", kLofi, lofi, kFrom128To128},
};

}  // namespace

std::span<const ReferenceLook> referenceLooks() { return kReferenceLooks; }

void runReference(const ReferenceLook& look, const Picture& picture, const std::uint8_t* texture,
                  const ReferenceTuning& tuning) {
  referenceRun(picture, look.pixelFunction(tuning), look.conversion, texture,
               look.look().textureBytesPerPixel);
}

}  // namespace lumora::test
