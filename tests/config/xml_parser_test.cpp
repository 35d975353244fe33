#include "config/xml_parser.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <string>
#include <utility>

#include "config/config_support.h"

namespace lumora::test {
namespace {

void expectParse(const std::string& text, int status, int line, int column, const std::string& tree,
                 XmlEncoding encoding = XmlEncoding::kUtf8) {
  XmlOutcome outcome;
  const XmlNode node = parseText(text.c_str(), encoding, outcome);
  EXPECT_EQ(static_cast<int>(outcome.status), status) << text;
  EXPECT_EQ(outcome.line, line) << text;
  EXPECT_EQ(outcome.column, column) << text;
  EXPECT_EQ(dump(node), tree) << text;
}

// Parsing stops at the mark ^, or at the end of a text without one.
void expectParse(const std::string& marked, int status, const std::string& tree) {
  const std::string before = marked.substr(0, marked.find('^'));
  const std::string after = marked.substr(std::min(before.size() + 1, marked.size()));
  const auto lines = std::count(before.begin(), before.end(), '\n');
  const std::size_t column = before.size() - before.rfind('\n');  // npos stands for -1
  expectParse(before + after, status, static_cast<int>(1 + lines), static_cast<int>(column), tree);
}

void expectParses(int status, std::initializer_list<std::pair<const char*, const char*>> cases) {
  for (const auto& [text, tree] : cases) expectParse(text, status, tree);
}

void expectRefusals(int status, std::initializer_list<const char*> texts) {
  for (const char* text : texts) expectParse(text, status, "empty");
}

TEST(XmlParser, GivesTheLoneElementOrTheNodeAboveAll) {
  expectParses(0, {{"<a>1</a>", "a(\"1\")"},
                   {" <a/> ", "a()"},
                   {"<?xml version='1.0'?><a/>", "(?xml(@version=1.0) a())"},
                   {"<!-- c --><a/>", "(<!-- c --> a())"},
                   {"text<a/>", "(\"text\" a())"},
                   {"<a/><b/>", "(a() b())"}});
  expectParses(2, {{"", "()"}, {"text only", "(\"text only\")"}});
}

TEST(XmlParser, ReadsTagsLeniently) {
  expectParses(0, {{"< a b = '1'\tc=\"2\"\n/>", "a(@b=1 @c=2)"},
                   {"<a b='1'c='>\"<'>x</ a / >", "a(@b=1 @c=>\"< \"x\")"},
                   {"<a><B></b/></A >", "a(B())"},
                   {"<a/b>x</a/b>", "a/b(\"x\")"},
                   {"<a><b><c>1</a><d/>", "(a(b(c(\"1\"))) d())"},
                   {"<pre>1</pre>", "pre(\"1\")"}});
  expectParses(1, {{"<a><x>1</x></a>\n<a>2", "(a(x(\"1\")) a(\"2\"))"},
                   {"<?pi?><?q a='?>'/><r?>", "(?pi() ?q(@a=?>) r?())"},
                   {"<?xml a='1'><b/>", "?xml(@a=1 b())"}});
}

TEST(XmlParser, TellsWhatAndWhereItRefuses) {
  expectRefusals(4, {"^<", "<a>\n ^<", "^<?", "^<>", "<a>^<='1'>", "^<?\?>"});
  expectRefusals(5, {"<a>^</", "<a>^</>"});
  expectRefusals(6, {"<a>\n</a>^</a>", "<a>^</ab>"});
  expectRefusals(
      7, {"<a>^<![CDATA[x]]", "<a>^<!-- x ->", "^<!DOCTYPE x [<!ELEMENT y>", "^<PRE></pre>"});
  expectRefusals(8, {"<a b^>", "<a b=^1>", "<a b=^'1>", "<a ^='1'>", "<a ^'x'>", "<a ^<b>",
                     "<a ?^>", "<a></a ^b>", "<a></a / ^/>"});
}

TEST(XmlParser, KeepsWhatCameBeforeAnEndInsideATag) {
  expectParses(1, {{"< ", "()"},
                   {"<a", "a()"},
                   {"<a ", "a()"},
                   {"<a b='1'", "a(@b=1)"},
                   {"<a b", "a()"},
                   {"<a b=", "a()"},
                   {"<a>1</a", "a(\"1\")"},
                   {"<a>1</ ", "a(\"1\")"},
                   {"<a>1</b ", "a(\"1\")"},
                   {"<a>1</a /", "a(\"1\")"}});
}

TEST(XmlParser, TrimsTextsAndJoinsThemAroundComments) {
  expectParses(0, {{"<a>\r\n\t 1 2 \n</a>", "a(\"1 2\")"},
                   {"<a> \t <b/> \n </a>", "a(b())"},
                   {"<a>1<b/>2</a>", "a(\"1\" b() \"2\")"},
                   {"<a>1 > 2 = \"3'</a>", "a(\"1 > 2 = \"3'\")"},
                   {"<a>32<!-- x -->48</a>", "a(\"3248\")"},
                   {"<a>32 <!-- x --> 48<!---->64</a>", "a(\"324864\")"},
                   {"<a>32<!--x--> <!--y-->48</a>", "a(\"32\" <!--x--> <!--y--> \"48\")"},
                   {"<a><!--x-->32<!--y--></a>", "a(<!--x--> \"32\" <!--y-->)"},
                   {"<a>32<![CDATA[x]]>48</a>", "a(\"32\" <![CDATA[x]]> \"48\")"},
                   {"<a>&#5<!--x-->0;</a>", "a(\"2\")"}});
}

TEST(XmlParser, KeepsSectionsAsTheyStand) {
  expectParses(0, {{"<a><![CDATA[<b>&x;]] ]]></a>", "a(<![CDATA[<b>&x;]] ]]>)"},
                   {"<a><PRE> <c> </PRE></a>", "a(<PRE> <c> </PRE>)"},
                   {"<!DOCTYPE a><a/>", "(<!DOCTYPE a> a())"},
                   {"<!DOCTYPE a [ <!ELEMENT b> ]><a/>", "(<!DOCTYPE a [ <!ELEMENT b> ]> a())"},
                   {"<!----><a/>", "(<!----> a())"}});
}

TEST(XmlParser, DecodesEntitiesInTextsAndValues) {
  expectParses(0, {{"<a b='&LT;&amp;&quot;'>&apos;&Gt;</a>", "a(@b=<&\" \"'>\")"},
                   {"<a>&#x41;&#X6a;&#65;</a>", "a(\"AjA\")"},
                   {"<a>&#32;1&#x20;</a>", "a(\" 1 \")"},
                   {"<a>1&#;2</a>", "a(\"1\")"},
                   {"<a>1&#x;2</a>", "a(\"1\")"},
                   {"<a>&#255;</a>", "a(\"\xFF\")"}});
  expectRefusals(13, {"<a>^&#256;</a>", "<a>1\n^&#x100;</a>", "<a>^&#99999999999999999999;</a>"});
  expectRefusals(12,
                 {"<a>1 ^&nbsp;</a>", "<a>1<!--x-->2^&</a>", "<a>^&amp</a>", "<a>^&#4g;</a>",
                  "<a>^&#300z;</a>", "<a>^&#6a;</a>", "<a>^&#x4g;</a>", "<a b='1' c='x^&#65'>"});
}

// The second byte of these characters looks like a token.
TEST(XmlParser, MovesByWholeCharacters) {
  for (const XmlEncoding encoding : {XmlEncoding::kShiftJis, XmlEncoding::kGbk}) {
    expectParse("<a>\x83<\x83&\x83 </a>", 0, 1, 11, "a(\"\x83<\x83&\x83 \")", encoding);
  }
  expectParse("<a>\x83<b/></a>", 0, 1, 13, "a(\"\x83\" b())", XmlEncoding::kSingleByte);
  expectParse("<a b\xB0>='x\xB0''/>", 0, 1, 13, "a(@b\xB0>=x\xB0')", XmlEncoding::kGb2312);
  expectParse("<a>\xE2\x82\xAC\n\xE2\x82\xAC</a>", 0, 2, 6, "a(\"\xE2\x82\xAC\n\xE2\x82\xAC\")");
  // A character cut off by the end of the text.
  expectParse("<a>1\xF0", 1, 1, 6, "a(\"1\xF0\")");
}

TEST(XmlParser, TakesNoTextAsAnError) {
  XmlOutcome outcome;
  EXPECT_TRUE(parseText(nullptr, XmlEncoding::kUtf8, outcome).isEmpty());
  EXPECT_EQ(outcome.status, XmlStatus::kNoText);
  EXPECT_EQ(outcome.line + outcome.column, 0);
}

TEST(XmlNode, ChildOutlivesItsParent) {
  XmlNode inner;
  {
    XmlOutcome outcome;
    const XmlNode outer = parseText("<a><b><c>1</c></b><d/></a>", XmlEncoding::kUtf8, outcome);
    inner = outer.childByName("B");
  }
  EXPECT_EQ(dump(inner), "b(c(\"1\"))");
  EXPECT_EQ(inner.data()->parent, nullptr);
}

TEST(XmlNode, FindsChildrenByNameFromAPosition) {
  XmlOutcome outcome;
  const XmlNode node = parseText("<a><x>1</x><Y>2</Y><X>3</X></a>", XmlEncoding::kUtf8, outcome);
  EXPECT_STREQ(node.childByName("X").text(0), "1");
  EXPECT_STREQ(node.childByName("x", 1).text(0), "3");
  EXPECT_TRUE(node.childByName("x", 3).isEmpty());
  EXPECT_TRUE(node.childByName("x", -1).isEmpty());
  EXPECT_TRUE(node.childByName("xx").isEmpty());
  EXPECT_TRUE(node.childByName("").isEmpty());
  EXPECT_EQ(node.childByName("x").text(1), nullptr);
  EXPECT_EQ(node.childByName("x").text(-1), nullptr);
  EXPECT_TRUE(XmlNode().childByName("x").isEmpty());
  EXPECT_EQ(XmlNode().text(0), nullptr);
}

}  // namespace
}  // namespace lumora::test
