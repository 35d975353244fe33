#include "config/config_document.h"

#include <gtest/gtest.h>

#include <string>

#include "config/config_support.h"
#include "config/number_reference.h"
#include "tuning_text/tuning_text.h"

namespace lumora::test {
namespace {

constexpr const char* kParam = "/Config/filterB/param2";

std::string withParam(const std::string& text) {
  return document("<filterB><param2>" + text + "</param2></filterB>");
}

TEST(ConfigDocument, FindsElementsByPathWithoutRegardToCase) {
  const TemporaryFile file(document("<FILTERB><Param2>7</Param2><param2>8</param2></FILTERB>"));
  ConfigDocument document;
  ASSERT_TRUE(document.load(file.path()));
  EXPECT_EQ(document.fileOutcome().status, XmlStatus::kNoError);
  for (const char* path : {"/Config/filterB/param2", "/config/filterb/PARAM2"}) {
    EXPECT_EQ(document.readInt(path, 0), 7) << path;
  }
  for (const char* path : {"Config/filterB/param2", "/filterB/param2", "/Config/filterB/",
                           "/Config//filterB", "/Config/filterB/param2/x", "/", ""}) {
    EXPECT_TRUE(document.findByPath(path).isEmpty()) << path;
  }
  EXPECT_TRUE(document.findByPath(nullptr).isEmpty());
}

TEST(ConfigDocument, LimitsTheLengthOfPathsAndFileNames) {
  const std::string name(246, 'x');  // "/Config/" and the name: 254 characters
  const TemporaryFile file(
      document("<" + name + ">7</" + name + "><" + name + "y>8</" + name + "y>"));
  ConfigDocument document;
  ASSERT_TRUE(document.load(file.path()));
  EXPECT_EQ(document.readInt(("/Config/" + name).c_str(), 0), 7);
  EXPECT_EQ(document.readInt(("/Config/" + name + "y").c_str(), 0), 0);

  EXPECT_FALSE(ConfigDocument().load(nullptr));
  EXPECT_FALSE(ConfigDocument().load(""))
      << "the name of the document held at first, which is none";
}

TEST(ConfigDocument, ReplacesABadFileByAnEmptyConfigElement) {
  const std::string good = withParam("7");
  const std::string short199 = good.substr(0, 199);
  const char* const tooShort = "discarded: the file has less than 200 bytes or cannot be read";
  const char* const tree = "Config(filterB(param2(\"7\")))";
  struct Case {
    std::string bytes;
    const char* report;
    const char* config = "Config()";  // what stands at /Config
  };
  const Case cases[] = {
      {"", tooShort},
      {short199, tooShort},
      {short199 + "\n", "read", tree},
      {"\xEF\xBB\xBF" + good, "read", tree},
      {good + std::string("\0<", 2), "read", tree},
      {paddedTo(200, "<Config><a>1</a></Config>"), "read", "empty"},
      {paddedTo(200, "<?xml?>\n<Config><a>1</a>"),
       "read: an end tag is missing at line 2, column 193", "Config(a(\"1\"))"},
      {std::string(200, ' '), "read: there is no element at line 1, column 201", "empty"},
      {short199 + "<", "discarded: a tag has no name at line 3, column 106"},
      {short199 + "</", "discarded: an end tag has no name at line 3, column 106"},
      {short199 + "</x>", "discarded: an end tag matches no open element at line 3, column 106"},
      {short199 + "<!--",
       "discarded: a comment or other section is not closed at line 3, column 106"},
      {short199 + "<a b>", "discarded: unexpected characters inside a tag at line 3, column 110"},
      {withParam("&nbsp;"),
       "discarded: an unknown or unfinished character entity at line 2, column 26"},
      {withParam("&#256;"), "discarded: a character code above 255 at line 2, column 26"},
  };
  for (const Case& c : cases) {
    const TemporaryFile file(c.bytes);
    ConfigDocument document;
    EXPECT_TRUE(document.load(file.path()));
    EXPECT_EQ(dump(document.findByPath("/Config")), c.config) << c.report;
    FilterParams params;
    TuningReport report;
    EXPECT_EQ(readFilterParams(params.bytes, file.path(), report), Status::kOk);
    EXPECT_EQ(describeDocument(report), c.report);
    if (!keepsDocument(report.document.status)) {
      EXPECT_EQ(describeBlock(report, 0), std::string("document ") + c.report);
    }
  }
  ConfigDocument missing;
  EXPECT_TRUE(missing.load("/nonexistent/filter.xml"));
  EXPECT_EQ(missing.fileOutcome().status, XmlStatus::kFileNotFound);
  EXPECT_EQ(dump(missing.findByPath("/Config")), "Config()");
}

TEST(ConfigDocument, KeepsTheTreeOfTheFileItHolds) {
  const TemporaryFile first(withParam("7"));
  const TemporaryFile second(withParam("8"));
  ConfigDocument document;
  ASSERT_TRUE(document.load(first.path()));
  first.rewrite(withParam("9"));
  ASSERT_TRUE(document.load(first.path()));
  EXPECT_EQ(document.readInt(kParam, 0), 7);
  ASSERT_TRUE(document.load(second.path()));
  EXPECT_EQ(document.readInt(kParam, 0), 8);
}

TEST(ConfigDocument, TakesTheLastGuessedEncodingWhereNoneCanBeGuessed) {
  // "\x83<" is one character in Shift-JIS and the start of a tag in single bytes.
  const std::string body = "<Config><a>\x83<7</a><b>8</b></Config>";
  const TemporaryFile shiftJis(paddedTo(200, "<?xml encoding='sjis'?>" + body));
  const TemporaryFile singleByte(paddedTo(200, "<?xml encoding='latin'?>" + body));
  const TemporaryFile unknown(paddedTo(200, "<?xml encoding='utf-8'?>" + body + "\xC3("));
  for (const TemporaryFile* before : {&shiftJis, &singleByte}) {
    ConfigDocument guessed, document;
    ASSERT_TRUE(guessed.load(before->path()));
    ASSERT_TRUE(document.load(unknown.path()));
    EXPECT_EQ(document.readInt("/Config/b", 0), before == &shiftJis ? 8 : 0);
    EXPECT_EQ(document.fileOutcome().status, guessed.fileOutcome().status);
  }
}

// Three pieces in every order, alone and before further numbers.
TEST(Numbers, AreReadAsTheStandardLibraryReadsThem) {
  const char* const pieces[] = {
      "",           " ",          "\r\n\t\v\f", "-",          "+",          ",",     "x",
      "0",          "007",        "12",         "0x10",       "3.9",        "32767", "32768",
      "2147483647", "2147483648", "2147483649", "4294967295", "4294967296", "32769"};
  for (const std::string first : pieces) {
    for (const std::string second : pieces) {
      for (const std::string third : pieces) {
        const std::string text = first + second + third;
        EXPECT_TRUE(areNumbersRight(text.c_str())) << text;
        EXPECT_TRUE(areNumbersRight((text + " 1 2 3 4 5 6").c_str())) << text;
      }
    }
  }
}

TEST(ConfigDocument, ReadsNumbersOfTheFirstText) {
  const TemporaryFile file(
      document("<a>\n  5 -6 <b/>7</a><word>x5</word><none/><section><![CDATA[5]]></section>"));
  ConfigDocument document;
  ASSERT_TRUE(document.load(file.path()));
  std::uint32_t words[3] = {9, 9, 9};
  std::int32_t ints[3] = {9, 9, 9};
  std::int16_t shorts[3] = {9, 9, 9};
  int read = -1;
  EXPECT_TRUE(document.readUInt32List("/Config/a", words, 3, &read));
  EXPECT_EQ(read, 2);
  EXPECT_TRUE(document.readInt32List("/Config/a", ints, 3));
  EXPECT_TRUE(document.readInt16List("/Config/a", shorts, 3));
  EXPECT_EQ(words[1], 0u - 6);
  EXPECT_EQ(ints[1], -6);
  EXPECT_EQ(shorts[1], -6);
  EXPECT_EQ(words[2] + ints[2] + shorts[2], 27u);

  EXPECT_EQ(document.readInt("/Config/a", 1), 5);
  EXPECT_EQ(document.readInt("/Config/word", 1), 1);
  EXPECT_EQ(document.readInt("/Config/none", 1), 1);
  EXPECT_EQ(document.readInt("/Config/missing", 1), 1);
  EXPECT_TRUE(document.readUInt32List("/Config/word", words, 3, &read));
  EXPECT_EQ(read, 0);
  for (const char* path : {"/Config/none", "/Config/missing", "/Config/section"}) {
    EXPECT_FALSE(document.readUInt32List(path, words, 3)) << path;
  }
  EXPECT_EQ(words[0], 5u);
}

}  // namespace
}  // namespace lumora::test
