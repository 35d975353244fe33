// The ageing of LAODIANYING's film: grain to the last bit, marks where the generator says.
#include "looks/texture/film_ageing.h"

#include <gtest/gtest.h>
#include <sys/time.h>

#include <algorithm>
#include <array>
#include <cstdlib>

#include "support/test_picture.h"

namespace lumora::test {
namespace {

constexpr std::uint32_t kSeed = 424242;
long clockMicroseconds = 0;

struct Mark {
  Bytes texels;
  int width;
  int height;
  MarkTexture view() { return {texels.data(), width, height}; }
};

Mark noiseMark(int width, int height, std::uint32_t seed) {
  return {noiseBytes(static_cast<std::size_t>(width) * height, seed), width, height};
}

// The plain form. Every product is stored before it is added, so that nothing is fused.
int grained(int channel, int texel, bool isDark) {
  const volatile float grain = (isDark ? 0.8f : 0.35f) * static_cast<float>(texel);
  const volatile float kept = (isDark ? 0x1.999998p-3f : 0.65f) * static_cast<float>(channel);
  return static_cast<int>(grain + kept);
}

int greyOfFilm(const std::uint8_t* p) {
  const volatile float green = 0x1.2e1478p-1f * static_cast<float>(p[1]);
  const volatile float blue = 0.11f * static_cast<float>(p[2]);
  const volatile float red = 0.3f * static_cast<float>(p[0]);
  const volatile float greenBlue = green + blue;
  return static_cast<int>(greenBlue + red);
}

void referenceGrain(const Picture& picture, const Bytes& grain) {
  for (int y = 0; y < picture.heightRows; ++y) {
    for (int x = 0; x < picture.widthPixels; ++x) {
      const int texel = grain[static_cast<std::size_t>(y) * picture.widthPixels + x];
      const int channels = picture.isRgba() ? 3 : 1;
      std::uint8_t* const p = picture.row(y) + x * (picture.isRgba() ? 4 : 1);
      const bool isDark = (picture.isRgba() ? greyOfFilm(p) : p[0]) <= 23;
      for (int c = 0; c < channels; ++c) {
        p[c] = toByte(grained(p[c], texel, isDark));
      }
    }
  }
}

int meanUnder(const Picture& picture, int left, int top, const Mark& mark) {
  int sum = 0;
  for (int y = top; y < top + mark.height; ++y) {
    for (int x = left; x < left + mark.width; ++x) {
      const std::uint8_t* const p = picture.row(y) + x * (picture.isRgba() ? 4 : 1);
      sum += picture.isRgba() ? (p[0] + p[1] + p[2]) / 3 : p[0];
    }
  }
  return sum / mark.height / mark.width;
}

void referenceStamp(const Picture& picture, const Mark& mark, int count) {
  for (int k = 0; k < count; ++k) {
    const int left = static_cast<int>(lrand48() % (picture.widthPixels - 2 * mark.width));
    const int top = static_cast<int>(lrand48() % (picture.heightRows - 2 * mark.height));
    const int mean = meanUnder(picture, left, top, mark);
    if (mean < 50 || mean > 200) continue;
    for (int i = 0; i < mark.width * mark.height; ++i) {
      const std::uint8_t v = mark.texels[i];
      std::uint8_t* const p =
          picture.row(top + i / mark.width) + (left + i % mark.width) * (picture.isRgba() ? 4 : 1);
      if (v != 0) std::fill_n(p, picture.isRgba() ? 3 : 1, v);
    }
  }
}

// In tiles that marks straddle.
void ageFilm(const Picture& picture, const MarkBuffer& marks) {
  const FilmAge age(picture, marks);
  for (int y = 0; y < picture.heightRows; y += 6) {
    age(picture, {y, std::min(6, picture.heightRows - y)});
  }
}

// What is left of a mark's bytes.
void prepare(Mark& blotch, Mark& speck) {
  for (std::uint8_t& v : blotch.texels) {
    v = v > 79 ? toByte(v + (255 - v) / 2) : 0;
  }
  for (std::uint8_t& v : speck.texels) v = v > 79 ? 255 : 0;
}

void expectGrain(const TestPicture& picture, const Bytes& grain, const TestPicture& expected) {
  for (const int level : supportedLevels()) {
    const ForcedLevel forced(level);
    const TestPicture result(picture);
    const Picture& view = result.view();
    kFilmGrain()(PixelRows::of(view, {0, view.heightRows}, 0, {grain.data()}, 1));
    EXPECT_EQ(result.difference(expected), kNone) << "on " << vectorLevelName(level);
  }
}

TEST(FilmGrain, HasTheWorkedValues) {
  struct Worked {
    std::uint8_t before[3];
    std::uint8_t texel;
    std::uint8_t after[3];
  };
  constexpr Worked kWorked[] = {
      {{24, 24, 24}, 255, {208, 208, 208}},  // grey 23.999998, dark
      {{24, 25, 24}, 255, {104, 105, 104}},  // 24.59: not dark
      {{0, 0, 0}, 255, {204, 204, 204}},
      {{255, 255, 255}, 0, {165, 165, 165}},
      {{255, 255, 255}, 255, {255, 255, 255}},
      {{0, 0, 200}, 0, {0, 0, 39}},  // the weight of dark pictures is just below 0.2
  };
  for (const Worked& w : kWorked) {
    TestPicture picture(PixelFormat::kRgba, 88, 88), expected(picture);
    picture.fill(w.before[0], w.before[1], w.before[2], 77);
    expected.fill(w.after[0], w.after[1], w.after[2], 77);
    expectGrain(picture, Bytes(88 * 88, w.texel), expected);
  }
}

TEST(FilmGrain, EqualsThePlainFormForEveryLumaAndTexel) {
  Bytes grain(65536);
  const TestPicture luma(PixelFormat::kNv12, 256, 256);
  for (int i = 0; i < 65536; ++i) {
    luma.data()[i] = toByte(i);
    grain[i] = toByte(i >> 8);
  }
  // Dark colours and others, at a width that leaves a tail.
  const TestPicture colours(PixelFormat::kRgba, 251, 256, 12, 9);
  for (int i = 0; i < 251 * 128; ++i) {
    for (int c = 0; c < 3; ++c) colours.data()[i / 251 * (4 * 251 + 12) + i % 251 * 4 + c] >>= 3;
  }
  for (const TestPicture* picture : {&luma, &colours}) {
    const TestPicture expected(*picture);
    referenceGrain(expected.view(), grain);
    expectGrain(*picture, grain, expected);
  }
}

class FilmMarks : public testing::Test {
 protected:
  FilmMarks() { setFilmSeed(kSeed); }
  ~FilmMarks() override { setFilmSeed({}); }
};

TEST_F(FilmMarks, LieWhereTheGeneratorSaysAndGrowWhiter) {
  for (const PixelFormat format : kFormats) {
    const TestPicture picture(format, 1500, 1000, 36), expected(picture);
    Bytes grain = noiseBytes(1500 * 1000, 8);
    for (std::uint8_t& v : grain) v /= 2;
    // Marks of a picture of that size.
    Mark blotch = noiseMark(20, 11, 5), speck = noiseMark(7, 5, 6);
    Mark plainBlotch = blotch, plainSpeck = speck;
    for (int call = 0; call < 2; ++call) {
      prepare(plainBlotch, plainSpeck);
      referenceGrain(expected.view(), grain);
      const TestPicture withoutMarks(expected);
      srand48(kSeed);
      referenceStamp(expected.view(), plainBlotch, 5);
      referenceStamp(expected.view(), plainSpeck, 60);
      ASSERT_NE(expected.difference(withoutMarks), kNone);

      ageFilm(picture.view(), {grain.data(), blotch.view(), speck.view()});
      EXPECT_EQ(picture.difference(expected), kNone);
      EXPECT_EQ(blotch.texels, plainBlotch.texels);
      EXPECT_EQ(speck.texels, plainSpeck.texels);
    }
  }
}

TEST_F(FilmMarks, LieWhereTheClockSaysWithoutASeed) {
  const auto agedAt = [](long microseconds) {
    clockMicroseconds = microseconds;
    const TestPicture picture(PixelFormat::kNv12, 300, 200);
    Mark blotch = noiseMark(20, 11, 5), speck = noiseMark(7, 5, 6);
    ageFilm(picture.view(), {Bytes(300 * 200, 150).data(), blotch.view(), speck.view()});
    return picture.snapshot();
  };
  const Bytes seeded = agedAt(7);
  EXPECT_TRUE(agedAt(8) == seeded);
  setFilmSeed({});
  EXPECT_TRUE(agedAt(kSeed) == seeded);
  EXPECT_FALSE(agedAt(7) == seeded);
}

// On flat ground every mark shows or none does.
TEST_F(FilmMarks, ShowOnMiddlingGroundOnly) {
  for (const int mean : {49, 50, 200, 201}) {
    for (const PixelFormat format : {PixelFormat::kRgba, PixelFormat::kNv21}) {
      int texel = 0, before = 25;
      while (grained(before, texel, false) != mean) texel == 255 ? (texel = 0, ++before) : ++texel;
      const auto value = toByte(before);
      TestPicture picture(format, 600, 400);
      picture.fill(value, value, value);
      const Bytes grain(600 * 400, toByte(texel));
      // Most of a mark is as bright as its ground, so that ground stays ground for the next one.
      Mark blotch{Bytes(20 * 11, 0), 20, 11}, speck{Bytes(7 * 5, 0), 7, 5};
      blotch.texels[37] = speck.texels[17] = 90;
      ageFilm(picture.view(), {grain.data(), blotch.view(), speck.view()});
      const Bytes after = picture.snapshot();
      const auto luma = after.begin() + 600 * 400 * (format == PixelFormat::kRgba ? 4 : 1);
      const auto shown = [&](int v) { return std::count(after.begin(), luma, v); };
      const bool isVisible = mean >= 50 && mean <= 200;
      EXPECT_EQ(shown(90 + 82) > 0, isVisible) << mean;
      EXPECT_GT(shown(mean), 0) << mean;
    }
  }
}

// Blotches that do not fit change nothing, and the specks lie where they would beside blotches.
TEST_F(FilmMarks, ThatDoNotFitChangeNothingButAreDrawn) {
  struct Case {
    int width, height;
    Mark blotch, speck;
  };
  const Case kCases[] = {
      {96, 88, {{}, 1, 0}, {{}, 0, 0}},
      {88, 1000, noiseMark(44, 8, 1), noiseMark(50, 4, 2)},
      {1000, 88, noiseMark(8, 44, 1), noiseMark(3, 60, 2)},
      {300, 200, noiseMark(150, 8, 1), noiseMark(7, 5, 2)},
      {300, 200, {{}, 0, 3}, noiseMark(7, 5, 2)},
  };
  for (const Case& c : kCases) {
    TestPicture picture(PixelFormat::kRgba, c.width, c.height);
    const Bytes grain(static_cast<std::size_t>(c.width) * c.height, 150);
    const TestPicture expected(picture);
    referenceGrain(expected.view(), grain);
    Mark blotch = c.blotch, speck = c.speck;
    if (2 * speck.width < c.width && 2 * speck.height < c.height && speck.width > 0) {
      Mark plainBlotch = blotch, plainSpeck = speck;
      prepare(plainBlotch, plainSpeck);
      srand48(kSeed);
      for (int draw = 0; draw < 2 * 5; ++draw) lrand48();
      referenceStamp(expected.view(), plainSpeck, 60);
    }
    ageFilm(picture.view(), {grain.data(), blotch.view(), speck.view()});
    EXPECT_EQ(picture.difference(expected), kNone);
  }
}

// Not its state and not, after lcong48, its parameters.
TEST_F(FilmMarks, HaveNothingToDoWithTheHostsGenerator) {
  unsigned short parameters[7] = {1, 2, 3, 4, 5, 6, 7};
  const Bytes grain(300 * 200, 150);
  const TestPicture pictures[] = {{PixelFormat::kNv12, 300, 200}, {PixelFormat::kNv12, 300, 200}};
  long draws[2][3];
  for (int i = 0; i < 2; ++i) {
    lcong48(parameters);
    for (long& draw : draws[i]) {
      draw = lrand48();
      Mark blotch = noiseMark(20, 11, 5), speck = noiseMark(7, 5, 6);
      if (i == 1)
        ageFilm(TestPicture(pictures[0]).view(), {grain.data(), blotch.view(), speck.view()});
    }
    Mark blotch = noiseMark(20, 11, 5), speck = noiseMark(7, 5, 6);
    ageFilm(pictures[i].view(), {grain.data(), blotch.view(), speck.view()});
    srand48(99);
  }
  EXPECT_TRUE(std::ranges::equal(draws[0], draws[1]));
  EXPECT_EQ(pictures[0].difference(pictures[1]), kNone);
}

}  // namespace
}  // namespace lumora::test

// Stands in for the C library's, by the linker.
extern "C" int __wrap_gettimeofday(timeval* now, void*) {
  *now = {0, lumora::test::clockMicroseconds};
  return 0;
}
