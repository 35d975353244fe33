// Documents that are made to exhaust the stack, the time or the memory, and memory that runs out.
#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <ctime>
#include <functional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "config/config_document.h"
#include "config/config_support.h"
#include "config/filter_params.h"
#include "config/xml_parser.h"
#include "support/counting_heap.h"
#include "support/test_picture.h"

namespace lumora::test {
namespace {

// What takes quadratic time misses its limit by orders of magnitude, with the reduced sizes too.
constexpr std::size_t kHostileBytes = kReduced ? 200'000 : 1'000'000;
constexpr double kSecondsAllowed = kReduced ? 5 : 1;

// Of the processor, for this process: other work on the machine does not count.
double secondsOfWork() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

std::string repeated(std::string_view piece, std::size_t bytes = kHostileBytes) {
  std::string text;
  while (text.size() < bytes) text += piece;
  return text;
}

// The piece again and again between two others.
std::string between(std::string_view before, std::string_view piece, std::string_view after) {
  return std::string(before).append(repeated(piece)).append(after);
}

// Runs on a stack that holds no thousand levels of anything.
void onSmallStack(std::function<void()> work) {
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, 128 * 1024), 0);
  const auto run = [](void* argument) -> void* {
    (*static_cast<std::function<void()>*>(argument))();
    return nullptr;
  };
  pthread_t thread;
  ASSERT_EQ(pthread_create(&thread, &attributes, run, &work), 0);
  EXPECT_EQ(pthread_join(thread, nullptr), 0);
  pthread_attr_destroy(&attributes);
}

TEST(HostileDocument, TakesLittleStackAndTimeInProportionToItsBytes) {
  struct Case {
    const char* what;
    std::string text;
    int status;
  };
  const std::string open = repeated("<a>");
  const Case cases[] = {
      {"openers", repeated("<"), 4},
      {"ampersands", between("<a>", "&", ""), 12},
      {"ampersands in a value", between("<a b='", "&", "'/>"), 12},
      {"blanks", repeated(" "), 2},
      {"one name", between("<", "a", "/>"), 0},
      {"one text", between("<a>", "a ", "</a>"), 0},
      {"one quote", between("<a b='", "\"", ""), 8},
      {"entities", between("<a>", "&amp;", "</a>"), 0},
      {"digits of an entity", between("<a>&#", "1", ";</a>"), 13},
      {"attributes", between("<a ", "b='1' ", "/>"), 0},
      {"texts", between("<a>", "1<b/>", "</a>"), 0},
      {"joined texts", between("<a>", "1<!---->", "</a>"), 0},
      {"joined texts with an error at the end", between("<a>", "1<!---->", "&</a>"), 12},
      {"texts that are not joined", between("<a>", "1<!----><!---->", "</a>"), 0},
      {"comment openers", repeated("<!--"), 7},
      {"almost closers", between("<!--", "-", ""), 7},
      {"comments", repeated("<!---->"), 2},
      {"section openers", repeated("<![CDATA["), 7},
      {"type openers", repeated("<!DOCTYPE"), 7},
      {"types", repeated("<!DOCTYPE>"), 2},
      {"types with a subset", repeated("<!DOCTYPE<]>"), 2},
      {"one type with many subsets", between("<!DOCTYPE", "<>", "]>"), 2},
      {"elements left open", open, 1},
      {"elements closed as deep", open + repeated("</a>", open.size() / 3 * 4), 0},
      {"elements left open and an end tag too many", between("", "<a>", "</b>"), 6},
      {"elements closed from afar", repeated("<r>" + repeated("<a>", 1000) + "</r>"), 0},
      {"end tags beside a long name", between("<", "a", ">") + repeated("<a></a>"), 1},
      {"declarations", repeated("<?a?>"), 0},
  };
  CountingHeap heap;
  for (const Case& c : cases) {
    const double start = secondsOfWork();
    onSmallStack([&c] {
      XmlOutcome outcome;
      const XmlNode node = parseText(c.text.c_str(), XmlEncoding::kUtf8, outcome);
      EXPECT_EQ(static_cast<int>(outcome.status), c.status) << c.what;
    });
    EXPECT_LT(secondsOfWork() - start, kSecondsAllowed) << c.what;
    EXPECT_EQ(heap.liveBlocks(), 0) << c.what;
  }
}

TEST(HostileDocument, IsSearchedForEveryKeyInTime) {
  const TemporaryFile file(
      document(repeated("<x/>") + "<filterB>" + repeated("<y/>") + "<param1>1</param1></filterB>"));
  FilterParams params;
  TuningReport report;
  const double start = secondsOfWork();
  EXPECT_EQ(readFilterParams(params.bytes, file.path(), report), Status::kOk);
  EXPECT_LT(secondsOfWork() - start, kSecondsAllowed);
  EXPECT_EQ(report.blocks[1].state, BlockState::kTooFewNumbers);
}

// Everything that the reader ever allocates for.
constexpr const char* kEverything =
    "<?xml version='1.0' encoding='UTF-8'?><!DOCTYPE x><Config><a b='1' c='2' d='3'>1<!-- x -->2"
    "<b/>3<!-- y --></a><c>1<d/>2<d/>3<d/>4<d/>5<d/>6<d/>7<![CDATA[x]]><![CDATA[y]]></c></Config>";

TEST(ExhaustedMemory, EndsEveryParseInTheEmptyNode) {
  CountingHeap heap;
  for (int n = 1;; ++n) {
    heap.failAt(n);
    {
      XmlOutcome outcome;
      const XmlNode node = parseText(kEverything, XmlEncoding::kUtf8, outcome);
      if (!heap.hasFailed()) {
        EXPECT_GT(n, 50) << "the document is larger than that";
        EXPECT_FALSE(node.isEmpty());
        break;
      }
      EXPECT_EQ(outcome.status, XmlStatus::kNoText) << n;
      EXPECT_TRUE(node.isEmpty()) << n;
    }
    ASSERT_EQ(heap.liveBlocks(), 0) << n;
  }
}

TEST(ConcurrentDocuments, EachReadTheirOwnEncodingAndValues) {
  struct Case {
    const char* encoding;
    int expected;  // of the element behind a text that Shift-JIS reads as one character and "7"
  };
  const Case cases[] = {{"sjis", 8}, {"latin", 0}, {"gbk", 8}, {"utf-16", 0}};
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (const Case& c : cases) {
    threads.emplace_back([&wrong, c] {
      const TemporaryFile file(paddedTo(200, std::string("<?xml encoding='") + c.encoding +
                                                 "'?><Config><a>\x83<7</a><b>8</b></Config>"));
      for (int i = 0; i < 200; ++i) {
        ConfigDocument document;
        if (!document.load(file.path()) || document.readInt("/Config/b", 0) != c.expected) ++wrong;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace lumora::test
