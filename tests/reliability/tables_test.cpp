// Results are the same on every processor, vector level and count of threads, and the same as they
// were when the tables were made (scripts/tables makes them anew); so are requests and messages.
#include <gtest/gtest.h>

#include <fstream>

#include "reliability/tables.h"
#include "support/captured_log.h"
#include "support/test_picture.h"

namespace lumora::test {
namespace {

std::vector<std::string> checkedIn(const std::string& name) {
  std::ifstream file(LUMORA_TABLES + name);
  std::vector<std::string> rows;
  for (std::string line; std::getline(file, line);) {
    if (line.find('#') != 0) rows.push_back(line);
  }
  return rows;
}

void expectTable(const std::vector<std::string>& table, const std::string& name) {
  const std::vector<std::string> expected = checkedIn(name);
  ASSERT_EQ(table.size(), expected.size());
  for (std::size_t i = 0; i < table.size(); ++i) {
    // A reduced table has fewer columns.
    const std::size_t length = kReduced ? table[i].size() : expected[i].size();
    EXPECT_EQ(table[i], expected[i].substr(0, length)) << "line " << i;
  }
}

class Digests : public testing::TestWithParam<std::tuple<int, bool>> {};

TEST_P(Digests, AreThoseOfTheTable) {
  const auto [level, onCaller] = GetParam();
  const ForcedLevel forced(level);
  const CapturedLog log;
  expectTable(digestTable(LUMORA_RESOURCES, onCaller, kReduced), "digests.txt");
}

std::string nameOf(const testing::TestParamInfo<std::tuple<int, bool>>& run) {
  const auto [level, onCaller] = run.param;
  return vectorLevelName(level) + std::string(onCaller ? "OnOneThread" : "OnFourThreads");
}

INSTANTIATE_TEST_SUITE_P(Levels, Digests,
                         testing::Combine(testing::ValuesIn(supportedLevels()), testing::Bool()),
                         nameOf);

TEST(Failures, AreThoseOfTheTable) { expectTable(failureTable(), "failures.txt"); }

}  // namespace
}  // namespace lumora::test
