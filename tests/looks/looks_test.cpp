// All looks: worked values, and agreement with the plain formulas on every vector level.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "looks/looks.h"
#include "looks/reference_looks.h"
#include "support/everywhere.h"

namespace lumora::test {
namespace {

constexpr int kWidthStep = kReduced ? 7 : 1;
constexpr std::uint32_t kNvSamples = kReduced ? 1 : 6;
constexpr int kColourStep = kReduced ? 37 : 1;

struct Case {
  const ReferenceLook* look;
  int ratio;
  bool stored;  // noise as curves, so that steps wrap and lookups saturate
};

std::vector<Case> allCases() {
  std::vector<Case> cases;
  for (const ReferenceLook& look : referenceLooks()) {
    for (const int ratio : {8, 13, 16, 17, 24, 32}) {
      for (const bool stored : {false, true}) cases.push_back({&look, ratio, stored});
    }
  }
  return cases;
}

int texelBytesOf(const Case& c) { return c.look->look().textureBytesPerPixel; }

// Compares the look with its plain form on the same picture and texture, which ends at an
// inaccessible page.
void expectPlainForm(const Case& c, const TestPicture& picture, const Bytes& texture) {
  SCOPED_TRACE(testing::Message() << c.look->name << " ratio " << c.ratio
                                  << (c.stored ? " stored" : " built in"));
  Bytes block = noiseBytes(sizeof(LookCurveBlock) + 2, 7);
  block[0] = 0;
  const std::uint8_t* const blockOrNull = c.stored ? block.data() : nullptr;
  TestPicture expected(picture);
  const GuardedBuffer guarded(texture);
  const std::uint8_t* const texels = texture.empty() ? nullptr : guarded.data();
  runReference(*c.look, expected.view(), texels, {blockOrNull, c.ratio});
  if (c.look->isMixed && c.ratio < 16) expected.mixIn(picture, c.ratio);
  expectEverywhere(picture, expected, [&](const Picture& copy, Threads threads) {
    return runLook(c.look->look(), copy, {{texels}, blockOrNull, c.ratio}, threads);
  });
}

void expectPlainForm(const Case& c, const TestPicture& picture, std::uint32_t textureSeed) {
  const Picture& view = picture.view();
  const auto texels = static_cast<std::size_t>(view.widthPixels) * view.heightRows;
  expectPlainForm(c, picture, noiseBytes(texels * texelBytesOf(c), textureSeed));
}

TEST(Looks, EqualThePlainFormulasForEveryChannelAndTexel) {
  // Every channel meets every texture value; each channel takes the columns in another order.
  TestPicture picture(PixelFormat::kRgba, 256, 256);
  for (int i = 0; i < 65536; ++i) {
    std::uint8_t* const p = picture.data() + 4 * i;
    p[0] = toByte(i);
    p[1] = toByte(i * 5);
    p[2] = toByte(255 - i);
  }
  for (const Case& c : allCases()) {
    const auto rowBytes = 256u * static_cast<unsigned>(texelBytesOf(c));
    Bytes texture(256 * rowBytes);
    for (std::size_t i = 0; i < texture.size(); ++i) {
      texture[i] = toByte(i / rowBytes * (1 + 2 * (i % (rowBytes / 256))));
    }
    expectPlainForm(c, picture, texture);
  }
}

TEST(Looks, EqualThePlainFormulasForNoise) {
  for (const Case& c : allCases()) {
    for (const PixelFormat format : kFormats) {
      const std::uint32_t samples = format == PixelFormat::kNv21 ? kNvSamples : 1;
      for (std::uint32_t seed = 1; seed <= samples; ++seed) {
        expectPlainForm(c, TestPicture(format, 256, 256, 0, seed), 50 + seed);
      }
    }
  }
}

// Row tails, padded rows, odd sizes of RGBA pictures, four stripes; nothing but pixels changes and
// nothing outside picture and texture is touched.
TEST(Looks, EqualThePlainFormulasAtEverySize) {
  const std::vector<Case> cases = allCases();
  std::size_t next = 0;
  for (int width = 88; width <= 120; width += kWidthStep) {
    for (const PixelFormat format : kFormats) {
      const bool isRgba = format == PixelFormat::kRgba;
      const int w = isRgba ? width : width & ~1, h = isRgba ? 89 + width % 4 : 90;
      for (int turn = 0; turn < 4; ++turn) {
        const Case& c = cases[next++ * 7 % cases.size()];
        expectPlainForm(c, TestPicture(format, w, h, width % 3 * 5), 3);
      }
    }
  }
}

// Black and white shows the grey of every one of the 2^24 colours, the other look the channel mix.
TEST(Looks, EqualThePlainFormulasForEveryColour) {
  for (const char* name : {"HEIBAI", "TIANMEIKEREN"}) {
    const auto isIt = [&](const ReferenceLook& l) { return std::strcmp(l.name, name) == 0; };
    const auto look = std::find_if(referenceLooks().begin(), referenceLooks().end(), isIt);
    ASSERT_NE(look, referenceLooks().end()) << name;
    for (int blue = 0; blue < 256; blue += kColourStep) {
      TestPicture picture(PixelFormat::kRgba, 256, 256);
      for (int i = 0; i < 65536; ++i) {
        const std::uint8_t pixel[4] = {toByte(i), toByte(i >> 8), toByte(blue), 0};
        std::copy_n(pixel, 4, picture.data() + 4 * i);
      }
      expectPlainForm({&*look, 16, false}, picture, Bytes());
    }
  }
}

constexpr PixelFormat kRgba = PixelFormat::kRgba;
constexpr PixelFormat kNv12 = PixelFormat::kNv12;

// The identity as stored curve leaves every value below 240 as it is, and 255 gives 254.
constexpr ToneCurve kIdentity =
    ToneCurve::of({{0, 16, 32, 48, 64, 80, 96, 112, 128, 144, 160, 176, 192, 208, 224, 240, 255}});
constexpr LookCurveBlock kStraight{0, {kIdentity, kIdentity, kIdentity}};
const auto* const kIdentityBlock = reinterpret_cast<const std::uint8_t*>(&kStraight);
constexpr std::uint8_t kStoredTint[] = {0, 255, 230, 172, 0};

struct Worked {
  const Look& (*look)();
  int ratio;
  PixelFormat format;
  Colour in;  // R, G, B or luma and the first and second chroma byte
  Colour out;
  Colour texel = {};  // all three bytes count for LIANGHONG only
  const std::uint8_t* block = nullptr;
};

const Worked kWorked[] = {
    {kHeibai, 16, kRgba, {255, 0, 0}, {76, 76, 76}},
    {kHeibai, 16, kRgba, {255, 255, 255}, {255, 255, 255}},
    {kHeibai, 16, kNv12, {200, 128, 3}, {200, 127, 127}},
    {kMoran, 8, kRgba, {64, 64, 64}, {71, 71, 71}},
    {kMoran, 16, kRgba, {128, 128, 128}, {170, 170, 170}},
    {kMoran, 16, kRgba, {255, 0, 0}, {95, 95, 95}},
    {kMoran, 32, kRgba, {128, 128, 128}, {213, 213, 213}},
    {kMoran, 16, kNv12, {0, 9, 200}, {1, 127, 127}},
    {kRixi, 16, kRgba, {128, 128, 128}, {149, 163, 170}},
    {kRixi, 32, kRgba, {0, 0, 0}, {33, 39, 59}},
    {kRixi, 16, kNv12, {128, 127, 127}, {160, 133, 119}},
    {kFugu, 16, kRgba, {128, 128, 128}, {126, 133, 132}},
    {kFugu, 16, kNv12, {128, 127, 127}, {131, 128, 123}},
    {kValencia, 16, kRgba, {128, 128, 128}, {163, 156, 149}},
    {kValencia, 16, kNv12, {128, 127, 127}, {157, 123, 131}},
    {kNuanyangyang, 16, kRgba, {128, 128, 128}, {222, 201, 175}},
    {kNuanyangyang, 16, kNv12, {128, 127, 127}, {204, 111, 140}},
    {kTianmeikeren, 16, kRgba, {128, 128, 128}, {198, 183, 186}},
    {kTianmeikeren, 16, kRgba, {255, 0, 0}, {253, 114, 154}},
    {kTianmeikeren, 32, kRgba, {128, 128, 128}, {214, 197, 200}},
    {kTianmeikeren, 32, kNv12, {128, 127, 127}, {202, 126, 136}},
    {kMeishimenghuan, 8, kRgba, {64, 64, 64}, {73, 69, 74}},
    {kMeishimenghuan, 16, kRgba, {64, 64, 64}, {82, 74, 83}},
    {kMeishimenghuan, 32, kRgba, {128, 128, 128}, {210, 210, 210}},
    {kEarlybird, 16, kRgba, {0, 0, 0}, {29, 0, 18}},
    {kEarlybird, 16, kRgba, {255, 255, 255}, {253, 250, 211}, {255, 0, 0}},
    {kEarlybird, 32, kRgba, {0, 0, 0}, {66, 2, 36}, {255, 0, 0}},
    {kHudson, 16, kRgba, {0, 0, 0}, {36, 0, 0}, {77, 0, 0}},
    {kHudson, 16, kRgba, {128, 129, 200}, {36, 5, 185}},
    {kXpro2, 16, kRgba, {255, 255, 255}, {255, 255, 228}},
    {kXpro2, 16, kRgba, {89, 89, 89}, {0, 0, 30}, {255, 0, 0}},
    {kYunduan, 16, kRgba, {0, 0, 0}, {23, 22, 32}, {9, 0, 0}},
    {kYunduan, 32, kRgba, {0, 0, 0}, {52, 27, 10}, {240, 0, 0}},
    {kLianghong, 16, kRgba, {128, 128, 128}, {155, 155, 155}},
    {kLianghong, 16, kRgba, {127, 255, 200}, {255, 255, 255}, {255, 255, 255}},
    {kLianghong, 16, kRgba, {126, 0, 255}, {254, 254, 255}, {255, 255, 0}},
    {kLaodianying, 16, kRgba, {255, 255, 255}, {253, 248, 171}, {255, 0, 0}},
    {kLaodianying, 32, kRgba, {255, 255, 255}, {252, 242, 134}, {255, 0, 0}},
    {kHudson, 16, kRgba, {128, 100, 200}, {128, 100, 201}, {128, 0, 0}, kIdentityBlock},
    {kHudson, 16, kRgba, {128, 129, 0}, {0, 4, 0}, {0, 0, 0}, kIdentityBlock},
    {kXpro2, 16, kRgba, {128, 90, 89}, {39, 1, 0}, {255, 0, 0}, kIdentityBlock},
    {kYunduan, 16, kRgba, {100, 0, 239}, {100, 0, 239}, {128, 0, 0}, kIdentityBlock},
    {kYunduan, 16, kRgba, {127, 200, 255}, {0, 113, 252}, {0, 0, 0}, kIdentityBlock},
    {kYunduan, 16, kRgba, {64, 128, 255}, {159, 254, 254}, {255, 0, 0}, kIdentityBlock},
    {kLofi, 16, kRgba, {85, 86, 0}, {169, 173, 0}, {255, 0, 0}, kIdentityBlock},
    {kLofi, 16, kRgba, {85, 86, 200}, {0, 5, 174}, {0, 0, 0}, kIdentityBlock},
    {kMyfair, 16, kRgba, {144, 145, 144}, {151, 151, 151}, {100, 0, 0}, kIdentityBlock},
    {kMyfair, 16, kRgba, {160, 16, 16}, {185, 17, 17}, {100, 0, 0}, kIdentityBlock},
    {kLaodianying, 16, kRgba, {200, 200, 200}, {198, 179, 134}, {255, 0, 0}, kStoredTint},
    {kLaodianying, 32, kRgba, {255, 255, 255}, {252, 242, 134}, {255, 0, 0}, kStoredTint},
};

TEST(Looks, GiveTheWorkedValues) {
  for (const Worked& c : kWorked) {
    SCOPED_TRACE(testing::Message() << "case " << &c - kWorked);
    TestPicture picture(c.format, 90, 88), expected(c.format, 90, 88);
    picture.fill(c.in.r, c.in.g, c.in.b, 7);
    expected.fill(c.out.r, c.out.g, c.out.b, 7);
    const std::uint8_t texel[3] = {toByte(c.texel.r), toByte(c.texel.g), toByte(c.texel.b)};
    const int texelBytes = c.look().textureBytesPerPixel;
    Bytes texture(90u * 88 * texelBytes);
    for (std::size_t i = 0; i < texture.size(); ++i) texture[i] = texel[i % texelBytes];
    expectEverywhere(picture, expected, [&](const Picture& copy, Threads threads) {
      return runLook(c.look(), copy, {{texture.data()}, c.block, c.ratio}, threads);
    });
  }
}

}  // namespace
}  // namespace lumora::test
