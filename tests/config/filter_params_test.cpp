#include "config/filter_params.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "config/config_support.h"
#include "config/sound_params.h"
#include "support/captured_log.h"
#include "support/test_picture.h"
#include "tuning_text/tuning_text.h"

namespace lumora::test {
namespace {

// 0 16 32 ... 240 255
constexpr Knots kStraight = {
    {0, 16, 32, 48, 64, 80, 96, 112, 128, 144, 160, 176, 192, 208, 224, 240, 255}};

constexpr Knots kCurves[3] = {
    kStraight,
    {{0, 7, 14, 21, 28, 35, 42, 49, 56, 63, 70, 77, 84, 91, 98, 105, 112}},
    {{5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 255}}};

// A knot may be changed to any text.
std::string textOf(const Knots& knots, int changed = -1, const std::string& value = "") {
  std::string text;
  for (int k = 0; k < kKnotCount; ++k) {
    text += (k == changed ? value : std::to_string(knots.at[k])) + " ";
  }
  return text;
}

std::string withKnot(int index, const std::string& value) {
  return textOf(kStraight, index, value);
}

const std::string kStraightText = textOf(kStraight);

std::string element(const std::string& name, const std::string& content) {
  return "<" + name + ">" + content + "</" + name + ">";
}
std::string param(int n, const std::string& text) {
  return element("param" + std::to_string(n), text);
}
std::string group(char letter, const std::string& params) {
  return element(std::string("filter") + letter, params);
}

std::string threeCurves(const std::string& third = textOf(kCurves[2])) {
  return param(1, kStraightText) + param(2, textOf(kCurves[1])) + param(3, third);
}

// What comes of a file, which is sound for every file.
struct Reading {
  FilterParams params;
  TuningReport report;

  explicit Reading(const std::string& fileText) {
    const TemporaryFile file(fileText);
    std::memset(params.bytes, 0xEE, sizeof params.bytes);
    EXPECT_EQ(readFilterParams(params.bytes, file.path(), report), Status::kOk);
    EXPECT_TRUE(areSound(params, report));
    FilterParams again;
    EXPECT_EQ(readFilterParams(again.bytes, file.path()), Status::kOk);
    EXPECT_EQ(std::memcmp(params.bytes, again.bytes, sizeof params.bytes), 0);
  }

  // A block's first bytes.
  Bytes start(char letter, int count) const {
    const std::uint8_t* const block = params.bytes + kTuningBlocks[letter - 'A'].offset;
    return {block, block + count};
  }
  std::string why(char letter) const { return describeBlock(report, letter - 'A'); }
  // The letters of the blocks in use.
  std::string inUse() const {
    std::string letters;
    for (int i = 0; i < kTuningBlockCount; ++i) {
      if (report.blocks[i].state == BlockState::kInUse) letters += kTuningBlocks[i].letter;
    }
    return letters;
  }
};

// Every block in use has the three curves above.
void expectCurves(const Reading& reading) {
  for (int i = 0; i < kTuningBlockCount; ++i) {
    if (reading.report.blocks[i].state != BlockState::kInUse) continue;
    const std::uint8_t* curve = reading.params.bytes + kTuningBlocks[i].curveOffset();
    for (int k = 0; k < kTuningBlocks[i].curveCount; ++k, curve += sizeof(ToneCurve)) {
      EXPECT_EQ(std::memcmp(curve, ToneCurve::of(kCurves[k]).bytes, 24), 0) << i;
    }
  }
}

TEST(FilterParams, LieWhereTheLooksExpectThem) {
  const int offsets[] = {0, 25, 98, 171, 244, 249, 322, 395, 468, 543, 616, 689, 762};
  const int modes[] = {1, 2, 3, 4, 5, 7, 9, 10, 11, 13, 14, 15, 16};
  for (int i = 0; i < kTuningBlockCount; ++i) {
    EXPECT_EQ(kTuningBlocks[i].letter, 'A' + i);
    EXPECT_EQ(tuningOffsetOf(static_cast<std::uint32_t>(modes[i])), offsets[i]) << modes[i];
  }
  for (const std::uint32_t mode : {0u, 6u, 8u, 12u, 17u, 20u, 0xFFFFFFFFu}) {
    EXPECT_EQ(tuningOffsetOf(mode), -1) << mode;
  }
}

TEST(FilterParams, HaveOnlyScalarsWithoutADocument) {
  const Reading reading("");
  EXPECT_EQ(reading.inUse(), "E");
  EXPECT_EQ(reading.start('E', 5), (Bytes{0, 255, 230, 172, 0}));
  EXPECT_EQ(reading.start('I', 4), (Bytes{1, 4, 2, 1}));
}

TEST(FilterParams, StoreCurvesAsTriples) {
  std::string groups;
  for (const TuningBlock& block : kTuningBlocks) groups += group(block.letter, threeCurves());
  const Reading reading(document(groups));
  EXPECT_EQ(reading.inUse(), "ABCDEFGHIJKLM");
  expectCurves(reading);
  EXPECT_EQ(reading.start('A', 25),
            (Bytes{0,  0,   128, 255, 16,  144, 255, 32,  160, 255, 48,  176, 255,
                   64, 192, 255, 80,  208, 255, 96,  224, 255, 112, 240, 255}));
}

TEST(FilterParams, RejectABlockForOneBadCurve) {
  struct Case {
    std::string third;
    const char* why;
  };
  const Case cases[] = {
      {withKnot(5, "64"), "in use"},
      {withKnot(16, "256"), "in use"},
      {withKnot(16, "99999999999"), "in use"},
      {kStraightText + "0", "in use"},
      {withKnot(5, "63"), "falling curve: knot 5 of /Config/filterB/param3 is below knot 4"},
      {withKnot(0, "-1"), "falling curve: knot 1 of /Config/filterB/param3 is below knot 0"},
      {withKnot(15, "256"), "falling curve: knot 16 of /Config/filterB/param3 is below knot 15"},
      {withKnot(16, "x"), "too few numbers: /Config/filterB/param3 holds 16 of 17"},
      {withKnot(15, "99999999999"), "too few numbers: /Config/filterB/param3 holds 16 of 17"},
      {"x", "too few numbers: /Config/filterB/param3 holds 0 of 17"},
      {" ", "missing key /Config/filterB/param3"},
  };
  for (const Case& c : cases) {
    const Reading reading(document(group('B', threeCurves(c.third)) + group('C', threeCurves())));
    EXPECT_EQ(reading.why('B'), c.why) << c.third;
    EXPECT_EQ(reading.inUse(), c.why == std::string("in use") ? "BCE" : "CE") << c.third;
  }
  const Reading reading(document(group('B', param(2, kStraightText) + param(3, kStraightText)) +
                                 group('M', param(1, kStraightText))));
  EXPECT_EQ(reading.why('B'), "missing key /Config/filterB/param1");
  EXPECT_EQ(reading.inUse(), "EM");
}

TEST(FilterParams, CompareWholeKnotsAndStoreTheirLowBytes) {
  const Reading reading(document(group('A', param(1, withKnot(16, "256")))));
  EXPECT_EQ(reading.inUse(), "AE");
  EXPECT_EQ(reading.start('A', 4), (Bytes{0, 0, 128, 0}));
}

TEST(FilterParams, JudgeTheTintByItsLastScalar) {
  struct Case {
    const char* value;
    std::uint8_t stored, flag;
  };
  const Case cases[] = {{"18", 18, 0},  {"19", 19, 1}, {"274", 18, 0},         {"-1", 255, 1},
                        {"300", 44, 1}, {"x", 0, 0},   {"99999999999", 255, 1}};
  for (const Case& c : cases) {
    const Reading reading(document(group('E', param(1, "300") + param(4, c.value))));
    EXPECT_EQ(reading.start('E', 5), (Bytes{c.flag, 44, 230, 172, c.stored})) << c.value;
  }
  const Reading reading(document(group('E', param(4, "19"))));
  EXPECT_EQ(reading.why('E'),
            "scalar out of range: /Config/filterE has param4 = 19, not at most 18");
}

TEST(FilterParams, JudgeTheGlowByASum) {
  struct Case {
    const char* param4;
    const char* param5;
    bool inUse;
  };
  const Case cases[] = {{"x", "x", true},   {"4", "2", true},  {"12", "4", true},
                        {"60", "0", true},  {"8", "2", false}, {"0", "1", false},
                        {"0", "31", false}, {"0", "7", true},  {"260", "258", true},
                        {"13", "0", false}, {"11", "0", false}};
  for (const Case& c : cases) {
    const std::string scalars = param(4, c.param4) + param(5, c.param5);
    const Reading reading(document(group('I', scalars + threeCurves())));
    EXPECT_EQ(reading.inUse(), c.inUse ? "EI" : "E") << c.param4 << " " << c.param5;
    EXPECT_EQ(reading.start('I', 7).back(), 16) << "the curves are stored all the same";
    EXPECT_EQ(Reading(document(group('I', scalars))).inUse(), "E") << "no curves";
  }
  const Reading reading(document(group('I', param(4, "8") + threeCurves())));
  EXPECT_EQ(reading.why('I'),
            "scalar out of range: /Config/filterI has param4 + 4 x param5 = 16, not 12, 28 or 60");
}

TEST(FilterParams, AreNotFoundWithoutADeclaration) {
  const Reading reading(paddedTo(200, element("Config", group('A', param(1, kStraightText)))));
  EXPECT_EQ(reading.inUse(), "E");
  EXPECT_EQ(reading.why('A'),
            "missing key /Config/filterA/param1: there is no element /Config (it needs an XML "
            "declaration before it)");
}

TEST(FilterParams, FailOnlyForAFileNameThatIsTooLong) {
  CapturedLog log;
  FilterParams params;
  EXPECT_EQ(readFilterParams(params.bytes, std::string(255, 'x').c_str()), Status::kOk);
  EXPECT_TRUE(log.lines().empty());
  EXPECT_EQ(readFilterParams(params.bytes, std::string(256, 'x').c_str()), Status::kBadResource);
  EXPECT_EQ(log.errors(), std::vector<std::string>{"[%s] xml file read failed!\n"});
  EXPECT_TRUE(areOnes(params.bytes, params.bytes + sizeof params.bytes));
}

TEST(TuningDocument, IsReadBackWithEveryBlockItHolds) {
  const std::string text =
      tuningDocument([](const TuningBlock&) -> const Knots* { return kCurves; });
  EXPECT_GE(text.size(), 200u);
  const Reading reading(text);
  EXPECT_EQ(describeDocument(reading.report), "read");
  EXPECT_EQ(reading.inUse(), "ABCDEFGHIJK");
  expectCurves(reading);
  EXPECT_EQ(reading.start('E', 5), (Bytes{0, 255, 230, 172, 0}));
  EXPECT_EQ(reading.start('I', 3), (Bytes{0, 4, 2}));
}

}  // namespace
}  // namespace lumora::test
