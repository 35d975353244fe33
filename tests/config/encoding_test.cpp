#include "config/encoding.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "config/config_support.h"

namespace lumora::test {
namespace {

using enum XmlEncoding;

std::string filled(std::string text) { return paddedTo(200, std::move(text)); }

std::string declared(const std::string& rest) { return filled("<?xml version=\"1.0\" " + rest); }

// 32-bit words of text, the first ones with a value below 256.
std::string words(std::size_t count, std::size_t smallWords) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) text.append(i < smallWords ? "a\0\0\0" : "abcd", 4);
  return text;
}

TEST(EncodingGuess, FollowsOrderMarksBytesAndDeclaration) {
  struct Case {
    const char* what;
    std::string bytes;
    XmlEncoding expected;
  };
  const Case cases[] = {
      {"24 bytes are too few", std::string(24, 'a'), kUndetermined},
      {"25 bytes suffice", std::string(25, 'a'), kUtf8},
      {"UTF-16 order mark", filled("\xFF\xFE<a>"), kUndetermined},
      {"UTF-16 order mark, swapped", filled("\xFE\xFF<a>"), kUndetermined},
      {"odd count: no wide text", filled("\xFF\xFE<a>") + " ", kUtf8},
      {"half of the words small", words(50, 25), kUtf8},
      {"more than half of them", words(50, 26), kUndetermined},
      {"a zero word", words(49, 0) + std::string(4, '\0'), kUndetermined},
      {"order mark of UTF-8", filled("\xEF\xBB\xBF<a b='\xFF'/>"), kUtf8},
      {"valid characters", filled("\xC3\xA4 \xE2\x82\xAC \xF0\x9F\x99\x82"), kUtf8},
      {"bytes that begin nothing", filled("\xC1 \xF5 \xFF \x80"), kUtf8},
      {"bad second byte", filled("\xC3("), kSingleByte},
      {"bad fourth byte", filled("\xF0\x9F\x99("), kSingleByte},
      {"zero byte inside a character", filled(std::string("<aaaa\xC3\0b", 8)), kSingleByte},
      {"nothing behind a zero byte counts", filled(std::string("<aaa>bc\0\xC3(", 10)), kUtf8},
      {"character cut off at the end", std::string(199, 'a') + "\xE2", kUtf8},
      {"declared utf-8", declared("encoding=\"utf-8\"?>"), kUtf8},
      {"declared UTF8", declared("encoding='UTF8'?>"), kUtf8},
      {"declared UTF-8 and it is not", declared("encoding=\"UTF-8\"?>\xC3("), kUndetermined},
      {"declared Shift-JIS", declared("encoding=\"Shift-JIS\"?>"), kShiftJis},
      {"declared SHIFTJIS", declared("encoding=\"SHIFTJIS\"?>"), kShiftJis},
      {"declared sjis", declared("encoding = \n 'sjis'?>"), kShiftJis},
      {"declared gb2312", declared("encoding\t=\r\" gb2312\"?>"), kGb2312},
      {"declared BIG5-HKSCS", declared("encoding=\"BIG5-HKSCS\"?>"), kBig5},
      {"declared gbk", declared("encoding=\"gbk\"?>"), kGbk},
      {"declared something else", declared("encoding=\"koi8-r\"?>"), kSingleByte},
      {"no equals sign", declared("encoding \"gbk\"?>"), kUtf8},
      {"no quote", declared("encoding=gbk?>"), kUtf8},
      {"the word in another case", declared("Encoding=\"gbk\"?>"), kUtf8},
      {"only the first one counts", declared("encoding encoding=\"gbk\"?>"), kUtf8},
      {"name cut off", std::string(188, ' ') + "encoding=\"gb", kSingleByte},
      {"nothing beyond 200 bytes", std::string(188, ' ') + "encoding=\"gb" + "k\"", kSingleByte},
  };
  for (const Case& c : cases) {
    // A block of just that size lets a sanitizer see a read beyond it.
    const std::vector<std::uint8_t> bytes(c.bytes.begin(), c.bytes.end());
    EXPECT_EQ(guessEncoding(bytes.data(), bytes.size()), c.expected) << c.what;
  }
}

TEST(CharacterLengths, ChangeAtTheBordersOfLeadBytes) {
  struct Case {
    XmlEncoding encoding;
    int first, last, length;
  };
  const Case cases[] = {
      {kUtf8, 0x01, 0xC1, 1},     {kUtf8, 0xC2, 0xDF, 2},     {kUtf8, 0xE0, 0xEF, 3},
      {kUtf8, 0xF0, 0xF4, 4},     {kUtf8, 0xF5, 0xFF, 1},     {kSingleByte, 0x01, 0xFF, 1},
      {kShiftJis, 0x01, 0x80, 1}, {kShiftJis, 0x81, 0x9F, 2}, {kShiftJis, 0xA0, 0xDF, 1},
      {kShiftJis, 0xE0, 0xEF, 2}, {kShiftJis, 0xF0, 0xFF, 1}, {kGb2312, 0x01, 0xA0, 1},
      {kGb2312, 0xA1, 0xF7, 2},   {kGb2312, 0xF8, 0xFF, 1},   {kBig5, 0x01, 0x80, 1},
      {kBig5, 0x81, 0xFE, 2},     {kBig5, 0xFF, 0xFF, 1},     {kGbk, 0x01, 0x80, 1},
      {kGbk, 0x81, 0xFE, 2},      {kGbk, 0xFF, 0xFF, 1},
  };
  for (const Case& c : cases) {
    const CharacterLengths& lengths = characterLengths(c.encoding);
    EXPECT_EQ(lengths['\0'], 0u);
    for (int byte = c.first; byte <= c.last; ++byte) {
      ASSERT_EQ(lengths[static_cast<char>(byte)], static_cast<std::size_t>(c.length))
          << static_cast<int>(c.encoding) << ", byte " << byte;
    }
  }
}

}  // namespace
}  // namespace lumora::test
