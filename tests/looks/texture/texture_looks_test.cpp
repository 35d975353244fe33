// The texture looks: worked values, and agreement with the plain formulas on every vector level.
#include <gtest/gtest.h>

#include <cstring>

#include "looks/texture/texture_looks.h"
#include "looks/texture/texture_reference.h"

namespace lumora::test {
namespace {

#if defined(LUMORA_REDUCED_TESTS)
constexpr int kWidthStep = 9;
constexpr int kNvSamples = 1;
#else
constexpr int kWidthStep = 2;
constexpr int kNvSamples = 6;
#endif
constexpr int kRatios[] = {8, 16, 17, 24, 32};

Bytes noise(std::size_t count, std::uint32_t seed) {
  Bytes bytes(count);
  Noise source(seed);
  for (std::uint8_t& b : bytes) b = source.byte();
  return bytes;
}

// Block bytes whose stored values are in use: noise, so that steps wrap and lookups saturate.
Bytes storedBlock(std::uint32_t seed) {
  Bytes block = noise(sizeof(LookCurveBlock), seed);
  block[0] = 0;
  return block;
}

Bytes textureFor(const TextureLook& look, int width, int height, std::uint32_t seed) {
  return noise(static_cast<std::size_t>(width) * height * look.look().textureBytesPerPixel, seed);
}

struct Case {
  const TextureLook* look;
  int ratio;
  bool stored;
};

std::ostream& operator<<(std::ostream& out, const Case& c) {
  return out << c.look->name << " ratio " << c.ratio << (c.stored ? " stored" : " built in");
}

// LIANGHONG cannot be tuned.
std::vector<Case> allCases() {
  std::vector<Case> cases;
  for (const TextureLook* look : kTextureLooks) {
    for (const int ratio : kRatios) {
      cases.push_back({look, ratio, false});
      if (look != &kLianghongLook) cases.push_back({look, ratio, true});
    }
  }
  return cases;
}

// Runs the look and its plain form on the same picture and texture and compares every byte, on
// every level of this processor.
void expectEqual(const Case& c, const TestPicture& original, const Bytes& texture,
                 Threads threads) {
  const Bytes block = storedBlock(7);
  const std::uint8_t* const blockOrNull = c.stored ? block.data() : nullptr;
  const Bytes pixels = original.snapshot();
  const Picture view = original.view();
  TestPicture picture(
      view.format, view.widthPixels, view.heightRows,
      static_cast<int>(view.strideBytes) - view.widthPixels * (view.isRgba() ? 4 : 1));
  picture.assign(pixels);
  runReference(*c.look, picture.view(), texture.data(), {blockOrNull, c.ratio});
  const Bytes expected = picture.snapshot();
  GuardedBuffer guardedTexture(texture.size());
  std::memcpy(guardedTexture.data(), texture.data(), texture.size());
  for (const int level : supportedLevels()) {
    const ForcedLevel forced(level);
    picture.assign(pixels);
    ASSERT_EQ(runLook(c.look->look(), picture.view(), {guardedTexture.data(), blockOrNull, c.ratio},
                      threads),
              Status::kOk);
    EXPECT_TRUE(picture.equals(expected))
        << c << " on " << vectorLevelName(level) << ": " << picture.difference(expected);
  }
}

TEST(TextureLooks, EqualThePlainFormulasForEveryChannelAndTexel) {
  // Every channel meets every texture value; each channel takes the columns in another order.
  TestPicture picture(PixelFormat::kRgba, 256, 256);
  for (int i = 0; i < 65536; ++i) {
    std::uint8_t* const p = picture.data() + 4 * i;
    p[0] = static_cast<std::uint8_t>(i);
    p[1] = static_cast<std::uint8_t>(i * 5);
    p[2] = static_cast<std::uint8_t>(255 - i);
  }
  for (const Case& c : allCases()) {
    const int texelBytes = c.look->look().textureBytesPerPixel;
    Bytes texture(65536u * texelBytes);
    for (std::size_t i = 0; i < texture.size(); ++i) {
      const std::size_t row = i / (256u * texelBytes);
      texture[i] = static_cast<std::uint8_t>(row * (1 + 2 * (i % texelBytes)));
    }
    expectEqual(c, picture, texture, Threads::kCaller);
  }
}

TEST(TextureLooks, EqualThePlainFormulasForNoise) {
  for (const Case& c : allCases()) {
    for (const PixelFormat format : kFormats) {
      const int samples = format == PixelFormat::kNv21 ? kNvSamples : 1;
      for (int k = 0; k < samples; ++k) {
        const auto seed = static_cast<std::uint32_t>(c.ratio + 100 * k);
        const TestPicture picture(format, 256, 256, 0, seed);
        expectEqual(c, picture, textureFor(*c.look, 256, 256, seed + 50), Threads::kCaller);
      }
    }
  }
}

// Row tails, padded rows, odd sizes of RGBA pictures, four stripes; nothing but pixels changes and
// nothing outside picture and texture is touched.
TEST(TextureLooks, EqualThePlainFormulasAtEverySize) {
  const std::vector<Case> cases = allCases();
  std::size_t next = 0;
  for (int width = 88; width <= 120; width += kWidthStep) {
    for (const PixelFormat format : kFormats) {
      const bool isRgba = format == PixelFormat::kRgba;
      const int w = isRgba ? width + width / 2 % 2 : width & ~1, h = isRgba ? 89 + width % 4 : 90;
      for (const Threads threads : {Threads::kCaller, Threads::kFour}) {
        const Case& c = cases[next++ * 7 % cases.size()];
        const TestPicture picture(format, w, h, width % 3 * 5);
        SCOPED_TRACE(testing::Message() << w << "x" << h);
        expectEqual(c, picture, textureFor(*c.look, w, h, 3), threads);
      }
    }
  }
}

TEST(TextureLooks, TreatSwappedChromaBytesAlike) {
  for (const TextureLook* look : kTextureLooks) {
    TestPicture nv21(PixelFormat::kNv21, 98, 90), nv12(PixelFormat::kNv12, 98, 90);
    const auto swapChroma = [](const TestPicture& picture) {
      std::uint8_t* const chroma = picture.view().chroma();
      for (int i = 0; i < 98 * 45; i += 2) std::swap(chroma[i], chroma[i + 1]);
    };
    const Bytes texture = textureFor(*look, 98, 90, 4);
    ASSERT_EQ(runLook(look->look(), nv21.view(), {texture.data(), nullptr, 20}, Threads::kFour),
              Status::kOk);
    swapChroma(nv12);
    ASSERT_EQ(runLook(look->look(), nv12.view(), {texture.data(), nullptr, 20}, Threads::kFour),
              Status::kOk);
    swapChroma(nv12);
    EXPECT_TRUE(nv12.equals(nv21.snapshot())) << look->name;
  }
}

struct Worked {
  const TextureLook& look;
  int ratio;
  Colour in;
  Colour texel;  // all three bytes count for LIANGHONG only
  Colour out;
};

void expectWorked(const Worked& c, const std::uint8_t* block) {
  const auto byte = [](int v) { return static_cast<std::uint8_t>(v); };
  TestPicture picture(PixelFormat::kRgba, 90, 88), expected(PixelFormat::kRgba, 90, 88);
  picture.fill(byte(c.in.r), byte(c.in.g), byte(c.in.b), 7);
  expected.fill(byte(c.out.r), byte(c.out.g), byte(c.out.b), 7);
  const int texelBytes = c.look.look().textureBytesPerPixel;
  const std::uint8_t texel[3] = {byte(c.texel.r), byte(c.texel.g), byte(c.texel.b)};
  Bytes texture(90u * 88 * texelBytes);
  for (std::size_t i = 0; i < texture.size(); ++i) texture[i] = texel[i % texelBytes];
  ASSERT_EQ(
      runLook(c.look.look(), picture.view(), {texture.data(), block, c.ratio}, Threads::kCaller),
      Status::kOk);
  EXPECT_TRUE(picture.equals(expected.snapshot()))
      << c.look.name << " of " << c.in.r << " " << c.in.g << " " << c.in.b << " on " << c.texel.r
      << ": " << picture.difference(expected.snapshot());
}

TEST(TextureLooks, GiveTheWorkedValuesWithBuiltInCurves) {
  const Worked cases[] = {
      {kEarlybirdLook, 16, {0, 0, 0}, {0, 0, 0}, {29, 0, 18}},
      {kEarlybirdLook, 8, {0, 0, 0}, {0, 0, 0}, {29, 0, 18}},
      {kEarlybirdLook, 16, {255, 255, 255}, {255, 0, 0}, {253, 250, 211}},
      {kEarlybirdLook, 32, {0, 0, 0}, {255, 0, 0}, {66, 2, 36}},
      {kHudsonLook, 16, {0, 0, 0}, {77, 0, 0}, {36, 0, 0}},
      {kHudsonLook, 16, {128, 129, 200}, {0, 0, 0}, {36, 5, 185}},
      {kXpro2Look, 16, {0, 0, 0}, {0, 0, 0}, {0, 0, 30}},
      {kXpro2Look, 16, {255, 255, 255}, {0, 0, 0}, {255, 255, 228}},
      {kXpro2Look, 16, {89, 89, 89}, {255, 0, 0}, {0, 0, 30}},
      {kXpro2Look, 32, {0, 0, 0}, {0, 0, 0}, {0, 0, 53}},
      {kYunduanLook, 16, {0, 0, 0}, {9, 0, 0}, {23, 22, 32}},
      {kYunduanLook, 32, {0, 0, 0}, {240, 0, 0}, {52, 27, 10}},
      {kLianghongLook, 16, {128, 128, 128}, {0, 0, 0}, {155, 155, 155}},
      {kLianghongLook, 16, {127, 255, 200}, {255, 255, 255}, {255, 255, 255}},
      {kLianghongLook, 16, {126, 0, 255}, {255, 255, 0}, {254, 254, 255}},
      {kLaodianyingLook, 16, {255, 255, 255}, {255, 0, 0}, {253, 248, 171}},
      {kLaodianyingLook, 24, {255, 255, 255}, {255, 0, 0}, {252, 245, 152}},
      {kLaodianyingLook, 32, {255, 255, 255}, {255, 0, 0}, {252, 242, 134}},
  };
  for (const Worked& c : cases) expectWorked(c, nullptr);
}

// The identity as stored curve leaves every value below 240 as the blend made it, and 255 gives
// 254.
TEST(TextureLooks, GiveTheWorkedValuesOfTheirBlends) {
  constexpr ToneCurve kIdentity = ToneCurve::of(
      {{0, 16, 32, 48, 64, 80, 96, 112, 128, 144, 160, 176, 192, 208, 224, 240, 255}});
  const LookCurveBlock block{0, {kIdentity, kIdentity, kIdentity}};
  const Worked cases[] = {
      {kHudsonLook, 16, {128, 100, 200}, {128, 0, 0}, {128, 100, 201}},
      {kHudsonLook, 16, {128, 129, 0}, {0, 0, 0}, {0, 4, 0}},
      {kXpro2Look, 16, {128, 90, 89}, {255, 0, 0}, {39, 1, 0}},
      {kYunduanLook, 16, {100, 0, 239}, {128, 0, 0}, {100, 0, 239}},
      {kYunduanLook, 16, {127, 200, 255}, {0, 0, 0}, {0, 113, 252}},
      {kYunduanLook, 16, {64, 128, 255}, {255, 0, 0}, {159, 254, 254}},
      {kLofiLook, 16, {85, 86, 0}, {255, 0, 0}, {169, 173, 0}},
      {kLofiLook, 16, {85, 86, 200}, {0, 0, 0}, {0, 5, 174}},
      {kMyfairLook, 16, {144, 145, 144}, {100, 0, 0}, {151, 151, 151}},
      {kMyfairLook, 16, {160, 16, 16}, {100, 0, 0}, {185, 17, 17}},
  };
  for (const Worked& c : cases) {
    expectWorked(c, reinterpret_cast<const std::uint8_t*>(&block));
  }
  // A stored tint of LAODIANYING.
  const std::uint8_t tint[] = {0, 255, 230, 172, 0};
  expectWorked({kLaodianyingLook, 16, {200, 200, 200}, {255, 0, 0}, {198, 179, 134}}, tint);
  expectWorked({kLaodianyingLook, 32, {255, 255, 255}, {255, 0, 0}, {252, 242, 134}}, tint);
}

}  // namespace
}  // namespace lumora::test
