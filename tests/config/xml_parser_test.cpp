#include "config/xml_parser.h"

#include <gtest/gtest.h>

#include <string>

#include "config/config_support.h"

namespace lumora::test {
namespace {

struct ParseCase {
  const char* text;
  int status;
  int line, column;  // where parsing stopped
  const char* tree;
};

void expectParse(const ParseCase& c, XmlEncoding encoding = XmlEncoding::kUtf8) {
  XmlOutcome outcome;
  const XmlNode node = parseText(c.text, encoding, outcome);
  EXPECT_EQ(static_cast<int>(outcome.status), c.status) << c.text;
  EXPECT_EQ(outcome.line, c.line) << c.text;
  EXPECT_EQ(outcome.column, c.column) << c.text;
  EXPECT_EQ(dump(node), c.tree) << c.text;
}

TEST(XmlParser, GivesTheLoneElementOrTheNodeAboveAll) {
  const ParseCase cases[] = {
      {"<a>1</a>", 0, 1, 9, "a(\"1\")"},
      {" <a/> ", 0, 1, 7, "a()"},
      {"<?xml version='1.0'?><a/>", 0, 1, 26, "(?xml(@version=1.0) a())"},
      {"<!-- c --><a/>", 0, 1, 15, "(<!-- c --> a())"},
      {"text<a/>", 0, 1, 9, "(\"text\" a())"},
      {"<a/><b/>", 0, 1, 9, "(a() b())"},
      {"", 2, 1, 1, "()"},
      {"text only", 2, 1, 10, "(\"text only\")"},
  };
  for (const ParseCase& c : cases) expectParse(c);
}

TEST(XmlParser, ReadsTagsLeniently) {
  const ParseCase cases[] = {
      {"< a b = '1'\tc=\"2\"\n/>", 0, 2, 3, "a(@b=1 @c=2)"},
      {"<a b='1'c='>\"<'>x</ a / >", 0, 1, 26, "a(@b=1 @c=>\"< \"x\")"},
      {"<a><B></b/></A >", 0, 1, 17, "a(B())"},
      {"<a/b>x</a/b>", 0, 1, 13, "a/b(\"x\")"},
      {"<a><b><c>1</a><d/>", 0, 1, 19, "(a(b(c(\"1\"))) d())"},
      {"<a><x>1</x></a>\n<a>2", 1, 2, 5, "(a(x(\"1\")) a(\"2\"))"},
      {"<?pi?><?q a='?>'/><r?>", 1, 1, 23, "(?pi() ?q(@a=?>) r?())"},
      {"<?xml a='1'><b/>", 1, 1, 17, "?xml(@a=1 b())"},
      {"<pre>1</pre>", 0, 1, 13, "pre(\"1\")"},
  };
  for (const ParseCase& c : cases) expectParse(c);
}

TEST(XmlParser, TellsWhatAndWhereItRefuses) {
  const ParseCase cases[] = {
      {"<", 4, 1, 1, "empty"},
      {"<a>\n <", 4, 2, 2, "empty"},
      {"<?", 4, 1, 1, "empty"},
      {"<>", 4, 1, 1, "empty"},
      {"<a><='1'>", 4, 1, 4, "empty"},
      {"<?\?>", 4, 1, 1, "empty"},
      {"<a></", 5, 1, 4, "empty"},
      {"<a></>", 5, 1, 4, "empty"},
      {"<a>\n</a></a>", 6, 2, 5, "empty"},
      {"<a></ab>", 6, 1, 4, "empty"},
      {"<a><![CDATA[x]]", 7, 1, 4, "empty"},
      {"<a><!-- x ->", 7, 1, 4, "empty"},
      {"<!DOCTYPE x [<!ELEMENT y>", 7, 1, 1, "empty"},
      {"<PRE></pre>", 7, 1, 1, "empty"},
      {"<a b>", 8, 1, 5, "empty"},
      {"<a b=1>", 8, 1, 6, "empty"},
      {"<a b='1>", 8, 1, 6, "empty"},
      {"<a ='1'>", 8, 1, 4, "empty"},
      {"<a 'x'>", 8, 1, 4, "empty"},
      {"<a <b>", 8, 1, 4, "empty"},
      {"<a ?>", 8, 1, 5, "empty"},
      {"<a></a b>", 8, 1, 8, "empty"},
      {"<a></a / />", 8, 1, 10, "empty"},
  };
  for (const ParseCase& c : cases) expectParse(c);
}

TEST(XmlParser, KeepsWhatCameBeforeAnEndInsideATag) {
  const ParseCase cases[] = {
      {"< ", 1, 1, 3, "()"},
      {"<a", 1, 1, 3, "a()"},
      {"<a ", 1, 1, 4, "a()"},
      {"<a b='1'", 1, 1, 9, "a(@b=1)"},
      {"<a b", 1, 1, 5, "a()"},
      {"<a b=", 1, 1, 6, "a()"},
      {"<a>1</a", 1, 1, 8, "a(\"1\")"},
      {"<a>1</ ", 1, 1, 8, "a(\"1\")"},
      {"<a>1</b ", 1, 1, 9, "a(\"1\")"},
      {"<a>1</a /", 1, 1, 10, "a(\"1\")"},
  };
  for (const ParseCase& c : cases) expectParse(c);
}

TEST(XmlParser, TrimsTextsAndJoinsThemAroundComments) {
  const ParseCase cases[] = {
      {"<a>\r\n\t 1 2 \n</a>", 0, 3, 5, "a(\"1 2\")"},
      {"<a> \t <b/> \n </a>", 0, 2, 6, "a(b())"},
      {"<a>1<b/>2</a>", 0, 1, 14, "a(\"1\" b() \"2\")"},
      {"<a>1 > 2 = \"3'</a>", 0, 1, 19, "a(\"1 > 2 = \"3'\")"},
      {"<a>32<!-- x -->48</a>", 0, 1, 22, "a(\"3248\")"},
      {"<a>32 <!-- x --> 48<!---->64</a>", 0, 1, 33, "a(\"324864\")"},
      {"<a>32<!--x--> <!--y-->48</a>", 0, 1, 29, "a(\"32\" <!--x--> <!--y--> \"48\")"},
      {"<a><!--x-->32<!--y--></a>", 0, 1, 26, "a(<!--x--> \"32\" <!--y-->)"},
      {"<a>32<![CDATA[x]]>48</a>", 0, 1, 25, "a(\"32\" <![CDATA[x]]> \"48\")"},
      {"<a>&#5<!--x-->0;</a>", 0, 1, 21, "a(\"2\")"},
  };
  for (const ParseCase& c : cases) expectParse(c);
}

TEST(XmlParser, KeepsSectionsAsTheyStand) {
  const ParseCase cases[] = {
      {"<a><![CDATA[<b>&x;]] ]]></a>", 0, 1, 29, "a(<![CDATA[<b>&x;]] ]]>)"},
      {"<a><PRE> <c> </PRE></a>", 0, 1, 24, "a(<PRE> <c> </PRE>)"},
      {"<!DOCTYPE a><a/>", 0, 1, 17, "(<!DOCTYPE a> a())"},
      {"<!DOCTYPE a [ <!ELEMENT b> ]><a/>", 0, 1, 34, "(<!DOCTYPE a [ <!ELEMENT b> ]> a())"},
      {"<!----><a/>", 0, 1, 12, "(<!----> a())"},
  };
  for (const ParseCase& c : cases) expectParse(c);
}

TEST(XmlParser, DecodesEntitiesInTextsAndValues) {
  const ParseCase cases[] = {
      {"<a b='&LT;&amp;&quot;'>&apos;&Gt;</a>", 0, 1, 38, "a(@b=<&\" \"'>\")"},
      {"<a>&#x41;&#X6a;&#65;</a>", 0, 1, 25, "a(\"AjA\")"},
      {"<a>&#32;1&#x20;</a>", 0, 1, 20, "a(\" 1 \")"},
      {"<a>1&#;2</a>", 0, 1, 13, "a(\"1\")"},
      {"<a>1&#x;2</a>", 0, 1, 14, "a(\"1\")"},
      {"<a>&#255;</a>", 0, 1, 14, "a(\"\xFF\")"},
      {"<a>&#256;</a>", 13, 1, 4, "empty"},
      {"<a>1\n&#x100;</a>", 13, 2, 1, "empty"},
      {"<a>&#99999999999999999999;</a>", 13, 1, 4, "empty"},
      {"<a>1 &nbsp;</a>", 12, 1, 6, "empty"},
      {"<a>1<!--x-->2&</a>", 12, 1, 14, "empty"},
      {"<a>&amp</a>", 12, 1, 4, "empty"},
      {"<a>&#4g;</a>", 12, 1, 4, "empty"},
      {"<a>&#300z;</a>", 12, 1, 4, "empty"},
      {"<a>&#6a;</a>", 12, 1, 4, "empty"},
      {"<a b='1' c='x&#65'>", 12, 1, 14, "empty"},
  };
  for (const ParseCase& c : cases) expectParse(c);
}

// The second byte of these characters looks like a token.
TEST(XmlParser, MovesByWholeCharacters) {
  const ParseCase inText = {"<a>\x83<\x83&\x83 </a>", 0, 1, 11, "a(\"\x83<\x83&\x83 \")"};
  expectParse(inText, XmlEncoding::kShiftJis);
  expectParse(inText, XmlEncoding::kGbk);
  expectParse({"<a>\x83<b/></a>", 0, 1, 13, "a(\"\x83\" b())"}, XmlEncoding::kSingleByte);
  expectParse({"<a b\xB0>='x\xB0''/>", 0, 1, 13, "a(@b\xB0>=x\xB0')"}, XmlEncoding::kGb2312);
  expectParse({"<a>\xE2\x82\xAC\n\xE2\x82\xAC</a>", 0, 2, 6, "a(\"\xE2\x82\xAC\n\xE2\x82\xAC\")"});
  // A character cut off by the end of the text.
  expectParse({"<a>1\xF0", 1, 1, 6, "a(\"1\xF0\")"});
}

TEST(XmlParser, TakesNoTextAsAnError) { expectParse({nullptr, 9, 0, 0, "empty"}); }

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
