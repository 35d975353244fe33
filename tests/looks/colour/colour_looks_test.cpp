// The looks without textures: worked values, and agreement with the plain formulas.
#include <gtest/gtest.h>

#include "looks/colour/colour_looks.h"
#include "support/reference_look.h"

namespace lumora::test {
namespace {

#if defined(LUMORA_REDUCED_TESTS)
constexpr int kWidthStep = 7;
constexpr int kRatios[] = {16, 24};
#else
constexpr int kWidthStep = 1;
constexpr int kRatios[] = {8, 16, 17, 24, 32};
#endif

struct NamedLook {
  const char* name;
  const Look& (*look)();
  // The look's own step in front of its curves.
  Colour (*before)(const ReferencePixel&);
};

int mixed(int sum) { return std::min(255, (std::max(0, sum) + 64) >> 7); }

Colour unchanged(const ReferencePixel& p) { return p.colour; }
Colour mixChannels(Colour c) {
  return {mixed(148 * c.r + c.b - 12 * c.g), mixed(37 * c.r + 115 * c.g - 13 * c.b),
          mixed(47 * c.r + 18 * c.g + 70 * c.b)};
}

Colour mixedChannels(const ReferencePixel& p) { return mixChannels(p.colour); }

constexpr NamedLook kCurveLooks[] = {{"RIXI", kRixi, unchanged},
                                     {"FUGU", kFugu, unchanged},
                                     {"VALENCIA", kValencia, unchanged},
                                     {"NUANYANGYANG", kNuanyangyang, unchanged},
                                     {"TIANMEIKEREN", kTianmeikeren, mixedChannels}};

// A block whose stored curves are in use: noise, so that steps wrap and lookups saturate.
LookCurveBlock noisyBlock(std::uint32_t seed) {
  LookCurveBlock block{};
  Noise noise(seed);
  for (ToneCurve& curve : block.curves) {
    Knots knots{};
    for (std::uint8_t& knot : knots.at) knot = noise.byte();
    curve = ToneCurve::of(knots);
  }
  return block;
}

Knots knotsOf(const BuiltInCurves& builtIn, const LookCurveBlock* block, int channel, int ratio) {
  const Knots base = block != nullptr ? block->curves[channel].knots() : builtIn.plain[channel];
  return rampCurve(base, builtIn.strong[channel], ratio);
}

void runCurveReference(const NamedLook& look, const Picture& picture, const LookCurveBlock* block,
                       int ratio) {
  const BuiltInCurves& builtIn = *look.look().builtIn;
  const Knots r = knotsOf(builtIn, block, 0, ratio), g = knotsOf(builtIn, block, 1, ratio),
              b = knotsOf(builtIn, block, 2, ratio);
  referenceRun(picture, [&](const ReferencePixel& p) {
    const Colour c = look.before(p);
    return Colour{curveLookup(r, c.r), curveLookup(g, c.g), curveLookup(b, c.b)};
  });
}

const std::uint8_t* bytesOf(const LookCurveBlock* block) {
  return reinterpret_cast<const std::uint8_t*>(block);
}

class ColourLooks : public testing::TestWithParam<int> {
 protected:
  ForcedLevel level_{GetParam()};
};

struct Worked {
  const Look& (*look)();
  int ratio;
  PixelFormat format;
  Colour in;  // R, G, B or luma and the first and second chroma byte
  Colour out;
};

TEST_P(ColourLooks, GiveTheWorkedValues) {
  constexpr PixelFormat kRgba = PixelFormat::kRgba;
  constexpr PixelFormat kNv12 = PixelFormat::kNv12;
  const Worked cases[] = {
      {kHeibai, 16, kRgba, {255, 0, 0}, {76, 76, 76}},
      {kHeibai, 16, kRgba, {0, 255, 0}, {151, 151, 151}},
      {kHeibai, 16, kRgba, {0, 0, 255}, {28, 28, 28}},
      {kHeibai, 16, kRgba, {255, 255, 255}, {255, 255, 255}},
      {kHeibai, 16, kRgba, {128, 128, 128}, {128, 128, 128}},
      {kHeibai, 16, kNv12, {200, 128, 3}, {200, 127, 127}},
      {kMoran, 16, kRgba, {0, 0, 0}, {1, 1, 1}},
      {kMoran, 8, kRgba, {64, 64, 64}, {78, 78, 78}},
      {kMoran, 16, kRgba, {128, 128, 128}, {170, 170, 170}},
      {kMoran, 16, kRgba, {200, 200, 200}, {233, 233, 233}},
      {kMoran, 16, kRgba, {255, 255, 255}, {255, 255, 255}},
      {kMoran, 16, kRgba, {255, 0, 0}, {95, 95, 95}},
      {kMoran, 24, kRgba, {128, 128, 128}, {192, 192, 192}},
      {kMoran, 32, kRgba, {128, 128, 128}, {213, 213, 213}},
      {kMoran, 16, kNv12, {0, 9, 200}, {1, 127, 127}},
      {kMoran, 16, kNv12, {255, 9, 200}, {255, 127, 127}},
      {kRixi, 16, kRgba, {0, 0, 0}, {17, 18, 29}},
      {kRixi, 16, kRgba, {255, 255, 255}, {217, 238, 253}},
      {kRixi, 16, kRgba, {128, 128, 128}, {149, 163, 170}},
      {kRixi, 32, kRgba, {0, 0, 0}, {33, 39, 59}},
      {kRixi, 32, kRgba, {255, 255, 255}, {204, 230, 252}},
      {kRixi, 16, kNv12, {128, 127, 127}, {160, 133, 119}},
      {kFugu, 16, kRgba, {0, 0, 0}, {1, 10, 61}},
      {kFugu, 16, kRgba, {255, 255, 255}, {252, 240, 191}},
      {kFugu, 16, kRgba, {128, 128, 128}, {126, 133, 132}},
      {kFugu, 16, kNv12, {128, 127, 127}, {131, 128, 123}},
      {kValencia, 16, kRgba, {0, 0, 0}, {20, 0, 21}},
      {kValencia, 16, kRgba, {255, 255, 255}, {242, 254, 236}},
      {kValencia, 16, kRgba, {128, 128, 128}, {163, 156, 149}},
      {kValencia, 16, kNv12, {128, 127, 127}, {157, 123, 131}},
      {kNuanyangyang, 16, kRgba, {0, 0, 0}, {5, 3, 27}},
      {kNuanyangyang, 16, kRgba, {255, 255, 255}, {253, 248, 237}},
      {kNuanyangyang, 16, kRgba, {128, 128, 128}, {222, 201, 175}},
      {kNuanyangyang, 16, kNv12, {128, 127, 127}, {204, 111, 140}},
      {kTianmeikeren, 16, kRgba, {0, 0, 0}, {29, 33, 74}},
      {kTianmeikeren, 16, kRgba, {255, 255, 255}, {253, 246, 241}},
      {kTianmeikeren, 16, kRgba, {128, 128, 128}, {198, 183, 186}},
      {kTianmeikeren, 16, kRgba, {255, 0, 0}, {253, 114, 154}},
      {kTianmeikeren, 32, kRgba, {0, 0, 0}, {51, 51, 105}},
      {kTianmeikeren, 32, kRgba, {128, 128, 128}, {214, 197, 200}},
      {kTianmeikeren, 16, kNv12, {128, 127, 127}, {188, 126, 134}},
      {kTianmeikeren, 32, kNv12, {128, 127, 127}, {202, 126, 136}},
  };
  const auto byte = [](int v) { return static_cast<std::uint8_t>(v); };
  for (const Worked& c : cases) {
    TestPicture picture(c.format, 90, 88), expected(c.format, 90, 88);
    picture.fill(byte(c.in.r), byte(c.in.g), byte(c.in.b), 7);
    expected.fill(byte(c.out.r), byte(c.out.g), byte(c.out.b), 7);
    ASSERT_EQ(runLook(c.look(), picture.view(), {nullptr, nullptr, c.ratio}, Threads::kCaller),
              Status::kOk);
    EXPECT_TRUE(picture.equals(expected.snapshot()))
        << "case " << &c - cases << ": " << picture.difference(expected.snapshot());
  }
}

// Every width and a few heights, rows longer than the picture, both thread counts; padding, alpha
// and the bytes around the picture stay as they are.
TEST_P(ColourLooks, EqualThePlainFormulasAtEverySize) {
  const LookCurveBlock stored = noisyBlock(5);
  for (int width = 88; width <= 120; width += kWidthStep) {
    const int height = 88 + width % 4;
    const NamedLook& look = kCurveLooks[width % std::size(kCurveLooks)];
    const int ratio = kRatios[width / 2 % std::size(kRatios)];
    const LookCurveBlock* const block = width % 3 == 0 ? &stored : nullptr;
    for (const PixelFormat format : kFormats) {
      const bool isRgba = format == PixelFormat::kRgba;
      const int w = isRgba ? width : width & ~1, h = isRgba ? height : height & ~1;
      SCOPED_TRACE(testing::Message() << look.name << " " << w << "x" << h << " ratio " << ratio);
      TestPicture picture(format, w, h, width % 5 * 3), four(format, w, h, width % 5 * 3);
      TestPicture expected(format, w, h, width % 5 * 3);
      runCurveReference(look, expected.view(), block, ratio);
      const LookInputs inputs{nullptr, bytesOf(block), ratio};
      ASSERT_EQ(runLook(look.look(), picture.view(), inputs, Threads::kCaller), Status::kOk);
      ASSERT_EQ(runLook(look.look(), four.view(), inputs, Threads::kFour), Status::kOk);
      EXPECT_TRUE(picture.equals(expected.snapshot())) << picture.difference(expected.snapshot());
      EXPECT_TRUE(four.equals(expected.snapshot())) << four.difference(expected.snapshot());
    }
  }
}

TEST_P(ColourLooks, EqualThePlainFormulasAtEveryStrength) {
  const LookCurveBlock stored = noisyBlock(9);
  for (const NamedLook& look : kCurveLooks) {
    for (const int ratio : kRatios) {
      for (const LookCurveBlock* block : {&stored, static_cast<const LookCurveBlock*>(nullptr)}) {
        for (const PixelFormat format : kFormats) {
          SCOPED_TRACE(testing::Message() << look.name << " ratio " << ratio);
          const auto seed = static_cast<std::uint32_t>(ratio);
          TestPicture picture(format, 256, 128, 0, seed), expected(format, 256, 128, 0, seed);
          runCurveReference(look, expected.view(), block, ratio);
          ASSERT_EQ(runLook(look.look(), picture.view(), {nullptr, bytesOf(block), ratio},
                            Threads::kCaller),
                    Status::kOk);
          EXPECT_TRUE(picture.equals(expected.snapshot()))
              << picture.difference(expected.snapshot());
        }
      }
    }
  }
}

TEST_P(ColourLooks, MonochromeLooksEqualThePlainFormulas) {
  LookCurveBlockOf<1> stored{};
  stored.curves[0] = noisyBlock(3).curves[1];
  for (int width = 88; width <= 120; width += kWidthStep) {
    for (const PixelFormat format : kFormats) {
      const int w = format == PixelFormat::kRgba ? width : width & ~1;
      const int ratio = kRatios[width / 2 % std::size(kRatios)];
      const bool isStored = width % 2 == 0;
      TestPicture moran(format, w, 90, 5), heibai(format, w, 90, 5);
      TestPicture moranExpected(format, w, 90, 5), heibaiExpected(format, w, 90, 5);
      const BuiltInCurves& builtIn = *kMoran().builtIn;
      const Knots curve = rampCurve(isStored ? stored.curves[0].knots() : builtIn.plain[0],
                                    builtIn.strong[0], ratio);
      referenceMonochrome(moranExpected.view(), [&](int grey) { return curveLookup(curve, grey); });
      // On NV pictures black and white leaves the luma alone.
      referenceMonochrome(heibaiExpected.view(), [](int grey) { return grey; });
      const auto* const block = reinterpret_cast<const std::uint8_t*>(&stored);
      ASSERT_EQ(runLook(kMoran(), moran.view(), {nullptr, isStored ? block : nullptr, ratio},
                        Threads::kFour),
                Status::kOk);
      ASSERT_EQ(runLook(kHeibai(), heibai.view(), {nullptr, nullptr, ratio}, Threads::kFour),
                Status::kOk);
      EXPECT_TRUE(moran.equals(moranExpected.snapshot()))
          << moran.difference(moranExpected.snapshot());
      EXPECT_TRUE(heibai.equals(heibaiExpected.snapshot()))
          << heibai.difference(heibaiExpected.snapshot());
    }
  }
}

// Grey is computed for every one of the 2^24 colours, the channel mix with it.
TEST_P(ColourLooks, AgreeForEveryColour) {
#if defined(LUMORA_REDUCED_TESTS)
  constexpr int kStep = 37;
#else
  constexpr int kStep = 1;
#endif
  TestPicture grey(PixelFormat::kRgba, 256, 256), mix(PixelFormat::kRgba, 256, 256);
  const BuiltInCurves& curves = *kTianmeikeren().builtIn;
  int wrong = 0;
  for (int blue = 0; blue < 256; blue += kStep) {
    for (int i = 0; i < 65536; ++i) {
      const std::uint8_t pixel[4] = {static_cast<std::uint8_t>(i),
                                     static_cast<std::uint8_t>(i >> 8),
                                     static_cast<std::uint8_t>(blue), 0};
      std::copy_n(pixel, 4, grey.data() + 4 * i);
      std::copy_n(pixel, 4, mix.data() + 4 * i);
    }
    ASSERT_EQ(runLook(kHeibai(), grey.view(), {nullptr, nullptr, 16}, Threads::kCaller),
              Status::kOk);
    ASSERT_EQ(runLook(kTianmeikeren(), mix.view(), {nullptr, nullptr, 16}, Threads::kCaller),
              Status::kOk);
    for (int i = 0; i < 65536; ++i) {
      const Colour in{i & 255, i >> 8, blue};
      const Colour mixedColour = mixChannels(in);
      wrong += grey.data()[4 * i] != greyOf(in);
      wrong += mix.data()[4 * i] != curveLookup(curves.plain[0], mixedColour.r);
      wrong += mix.data()[4 * i + 1] != curveLookup(curves.plain[1], mixedColour.g);
      wrong += mix.data()[4 * i + 2] != curveLookup(curves.plain[2], mixedColour.b);
    }
  }
  EXPECT_EQ(wrong, 0);
}

INSTANTIATE_TEST_SUITE_P(Levels, ColourLooks, testing::ValuesIn(supportedLevels()),
                         [](const auto& level) { return vectorLevelName(level.param); });

}  // namespace
}  // namespace lumora::test
