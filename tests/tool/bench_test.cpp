// lumora bench: the figures fit each other.
#include <regex>

#include "pictures.h"

namespace lumora::test {
namespace {

class BenchTest : public PictureTest {
 protected:
  BenchTest() { writePicture("in.png", 401, 301); }
};

constexpr double kRounding = 1 + 1e-9;

double field(const std::string& json, const std::string& name) {
  std::smatch found;
  const std::regex pattern("\"" + name + "\": ([0-9.]+)");
  return std::regex_search(json, found, pattern) ? std::stod(found[1]) : -1;
}

TEST_F(BenchTest, TheFiguresOfARowFitEachOther) {
  const std::string json = succeed("bench --json --rounds 3 --looks blur --format nv12 in.png");
  EXPECT_EQ(field(json, "width"), 400);
  EXPECT_EQ(field(json, "height"), 300);
  const double ms = field(json, "ms"), limit = field(json, "limit_ms");
  ASSERT_GT(limit, 0);
  // The blur does far more than the pass beside it; but sanitizers slow the pass down most.
  EXPECT_GT(ms, kReduced ? 0 : 2 * limit);
  // Whatever the rounds were, the ratio of their medians lies where their ratios lie, and so does
  // the median of those.
  const double least = field(json, "times_limit_least"), most = field(json, "times_limit_most");
  const double times = field(json, "times_limit");
  EXPECT_TRUE(least <= times && times <= most) << json;
  EXPECT_TRUE(least <= ms / limit * kRounding && ms / limit <= most * kRounding) << json;
  EXPECT_NEAR(field(json, "pixels_per_second") * ms / (400 * 300 * 1e3), 1, kRounding - 1);
}

TEST_F(BenchTest, TheTableHasARowForEveryLookOfTheFormat) {
  const auto rows = [this](const std::string& more) {
    const std::string table = succeed("bench --rounds 1 --single-thread in.png " + more);
    EXPECT_TRUE(says(table, "\nin-place limit "));
    const std::regex row("\n[a-z0-9-]+ +[0-9.]+ +[0-9.]+ +[0-9.]+(?=\n)");
    return std::distance(std::sregex_iterator(table.begin(), table.end(), row), {});
  };
  EXPECT_EQ(rows(""), 20);
  EXPECT_EQ(rows("-f nv21"), 19);
  EXPECT_EQ(rows("-l heibai,7"), 2);
}

}  // namespace
}  // namespace lumora::test
