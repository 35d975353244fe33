// .cube files as programs write them, and such as no program should have.
#include "lut/cube_file.h"

#include <gtest/gtest.h>

#include <clocale>
#include <limits>

#include "support/test_picture.h"

namespace lumora::test {
namespace {

using lut::CubeFault;
using lut::Lut;

constexpr const char* kEight = "0 0 0\n1 0 0\n0 1 0\n1 1 0\n0 0 1\n1 0 1\n0 1 1\n1 1 1\n";

// The eight corners as they are, whatever stands around them.
void expectCorners(const std::string& text) {
  Lut read;
  const CubeFault fault = readCube(text, read);
  ASSERT_FALSE(fault) << fault.line << ": " << fault.reason << "\n" << text;
  ASSERT_EQ(read.entries.size(), 8u) << text;
  for (int i = 0; i < 8; ++i) {
    for (int channel = 0; channel < 3; ++channel) {
      EXPECT_EQ(read.entries[i][channel], static_cast<float>(i >> channel & 1)) << text;
    }
  }
}

std::string withLineEnds(std::string text, const std::string& end) {
  std::string result;
  for (const char c : text) result += c == '\n' ? end : std::string(1, c);
  return result;
}

TEST(CubeFile, DialectsOfTheWild) {
  const std::string plain = std::string("LUT_3D_SIZE 2\n") + kEight;
  expectCorners(plain);
  expectCorners(withLineEnds(plain, "\r\n"));
  expectCorners(withLineEnds(plain, "\r"));
  expectCorners("\xEF\xBB\xBF" + plain);
  expectCorners("TITLE \"a # in a \\\"title\\\"\"\n\n# comment\n\t LUT_3D_SIZE\t2  # size\n" +
                std::string(kEight));
  expectCorners("TITLE without quotes\nCREATOR somebody\nLUT_IN_VIDEO_RANGE\n" + plain);
  expectCorners(plain + "\n\n# the end");
  expectCorners("DOMAIN_MAX 1 1 1\nLUT_3D_SIZE 2\nDOMAIN_MIN 0 0 0\n" + std::string(kEight));
  expectCorners(
      "LUT_3D_SIZE 2\n+0.0 0e0 -0\n1.0E+00\t0. .0 # red\n0 1 0\n\n1 1 0\n  0 0 1\n"
      "1 0 1\n0 1 1\n1 1 1");

  Lut lut;
  ASSERT_FALSE(readCube("LUT_1D_SIZE 3\nLUT_1D_INPUT_RANGE -1 2\n0 0 0\n.5 .25 2\n1 1 -1\n", lut));
  EXPECT_TRUE(lut.is1d);
  EXPECT_EQ(lut.lowest, (lut::Triple{-1, -1, -1}));
  EXPECT_EQ(lut.highest, (lut::Triple{2, 2, 2}));
  EXPECT_EQ(lut.entries[1], (lut::Triple{0.5F, 0.25F, 2}));
}

TEST(CubeFile, DamageIsToldWithItsLine) {
  struct Case {
    std::string text;
    int line;
    const char* reason;
  };
  const std::string size = "LUT_3D_SIZE 2\n";
  const Case cases[] = {
      {"", 0, "neither LUT_3D_SIZE"},
      {"# nothing\n", 0, "neither LUT_3D_SIZE"},
      {kEight, 1, "before LUT_3D_SIZE"},
      {"LUT_3D_SIZE\n", 1, "'' is not a size"},
      {"LUT_3D_SIZE two\n", 1, "'two' is not a size"},
      {"LUT_3D_SIZE 2 2\n", 1, "is not a size"},
      {"\nLUT_3D_SIZE 1\n", 2, "1 is outside 2..256"},
      {"LUT_3D_SIZE 257\n", 1, "257 is outside"},
      {"LUT_1D_SIZE 65537\n", 1, "65537 is outside"},
      {"LUT_3D_SIZE 99999999999999\n", 1, "is not a size"},
      {"LUT_1D_SIZE 2\nLUT_3D_SIZE 2\n", 2, "several tables"},
      {size + "0 0\n", 2, "a number is missing"},
      {size + "0 0 0 0\n", 2, "'0' is one too many"},
      {size + "0,5 0,5 0,5\n", 2, "'0,5' is not a number"},
      {size + "0 1x 0\n", 2, "'1x' is not a number"},
      {size + "0 1e99 0\n", 2, "'1e99' is not a number"},
      {size + "0 --1 0\n", 2, "'--1' is not a number"},
      {size + "0 0 \x01\n", 2, "'?' is not a number"},
      {size + "0 0 nan\n", 2, "'nan' is not finite"},
      {size + "0 0 inf\n", 2, "'inf' is not finite"},
      {size + "0 0 0\r1 1 1\r2 2\r", 4, "a number is missing"},
      {size + "0 0 0\n", 0, "has 1 entries instead of 8"},
      {size + kEight + "0 0 0\n", 10, "more entries than the 8"},
      {"DOMAIN_MIN 0 1 0\n" + size + kEight, 0, "the domain is empty"},
      {"DOMAIN_MAX 1 1\n", 1, "a number is missing"},
      {"LUT_3D_INPUT_RANGE 0\n", 1, "a number is missing"},
  };
  for (const Case& c : cases) {
    Lut lut;
    const CubeFault fault = readCube(c.text, lut);
    ASSERT_TRUE(fault) << c.text;
    EXPECT_EQ(fault.line, c.line) << c.text;
    EXPECT_NE(fault.reason.find(c.reason), std::string::npos) << fault.reason << "\n" << c.text;
  }
}

// Any bytes: an answer, no harm.
TEST(CubeFile, Rubble) {
  const std::string sound = std::string("TITLE \"x\"\nLUT_3D_SIZE 2\nDOMAIN_MIN 0 0 0\n") + kEight;
  Noise noise(7);
  int read = 0;
  for (int round = 0; round < 3000; ++round) {
    std::string text = sound;
    for (unsigned i = noise.next() % 4; i > 0; --i) {
      text[noise.next() % text.size()] = static_cast<char>(noise.byte());
    }
    text.resize(noise.next() % 3 == 0 ? noise.next() % text.size() : text.size());
    Lut lut;
    const CubeFault fault = readCube(text, lut);
    if (!fault) {
      EXPECT_EQ(lut.entries.size(), lut::entryCount(lut.is1d, lut.size));
      ++read;
    }
  }
  EXPECT_GT(read, 100);
}

TEST(CubeFile, WhatIsWrittenIsReadInEveryLocale) {
  Lut lut;
  lut.size = 3;
  for (int i = 0; i < 27; ++i) {
    lut.entries.push_back({static_cast<float>(i) / 27, 1 - static_cast<float>(i) / 7, 0.125F});
  }
  const std::string before = writeCube(lut, "a title", {"one", "two"});
  for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "C"}) {
    if (std::setlocale(LC_ALL, name) == nullptr) continue;
    EXPECT_EQ(writeCube(lut, "a title", {"one", "two"}), before) << name;
    Lut read;
    ASSERT_FALSE(readCube(before, read)) << name;
    for (int i = 0; i < 27; ++i) {
      for (int c = 0; c < 3; ++c) EXPECT_NEAR(read.entries[i][c], lut.entries[i][c], 1e-6) << name;
    }
  }
  EXPECT_TRUE(before.starts_with("TITLE \"a title\"\n# one\n# two\nLUT_3D_SIZE 3\nDOMAIN_MIN 0."));
}

}  // namespace
}  // namespace lumora::test
