// lumora bench: the figures fit each other.
#include <gtest/gtest.h>

#include <regex>

#include "pictures.h"
#include "tool_runner.h"

namespace lumora::test {
namespace {

class BenchTest : public ToolTest {
 protected:
  BenchTest() { colourfulPicture(401, 301).write_to_file(pathOf("in.png").c_str()); }

  double field(const std::string& json, const std::string& name) const {
    std::smatch found;
    const std::regex pattern("\"" + name + "\": ([0-9.]+)");
    return std::regex_search(json, found, pattern) ? std::stod(found[1]) : -1;
  }
};

TEST_F(BenchTest, TheFiguresOfARowFitEachOther) {
  const ToolResult result =
      run({"bench", "--json", "--rounds", "3", "--looks", "blur", "--format", "nv12", "in.png"});
  ASSERT_EQ(result.exitCode, 0) << result.standardError;
  const std::string json = result.outputText();
  EXPECT_EQ(field(json, "width"), 400);
  EXPECT_EQ(field(json, "height"), 300);
  const double ms = field(json, "ms"), limit = field(json, "limit_ms");
  ASSERT_GT(limit, 0);
#ifndef LUMORA_REDUCED_TESTS  // sanitizers slow the pass down most
  // The blur does far more than the pass beside it.
  EXPECT_GT(ms, 2 * limit);
#endif
  EXPECT_NEAR(field(json, "times_limit"), ms / limit, 0.02 * ms / limit);
  EXPECT_NEAR(field(json, "pixels_per_second"), 400 * 300 / (1e-3 * ms),
              1e-2 * 400 * 300 / ms * 1e3);
}

TEST_F(BenchTest, TheTableHasARowForEveryLookOfTheFormat) {
  const auto rows = [this](std::vector<std::string> more) {
    more.insert(more.begin(), {"bench", "--rounds", "1", "--single-thread", "in.png"});
    const std::string table = run(more).outputText();
    const std::regex row("\n[a-z0-9-]+ +[0-9.]+ +[0-9.]+ +[0-9.]+(?=\n)");
    EXPECT_NE(table.find("\nin-place limit "), std::string::npos) << table;
    return std::distance(std::sregex_iterator(table.begin(), table.end(), row), {});
  };
  EXPECT_EQ(rows({}), 20);
  EXPECT_EQ(rows({"-f", "nv21"}), 19);
  EXPECT_EQ(rows({"-l", "heibai,7"}), 2);
}

}  // namespace
}  // namespace lumora::test
