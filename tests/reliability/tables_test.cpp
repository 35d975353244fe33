// Results are the same on every processor, vector level and count of threads, and the same as they
// were when the tables were made (scripts/tables makes them anew); so are requests and messages.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "reliability/digest_table.h"
#include "reliability/failure_table.h"
#include "support/captured_log.h"

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

class Digests : public testing::TestWithParam<std::tuple<int, bool>> {};

TEST_P(Digests, AreThoseOfTheTable) {
  const auto [level, onCaller] = GetParam();
  const ForcedLevel forced(level);
  const CapturedLog log;
  const std::vector<std::string> expected = checkedIn("digests.txt");
  const int columns = kReduced ? reducedColumns() : allColumns();
  const std::vector<DigestRow> table = digestTable(LUMORA_RESOURCES, onCaller, columns);
  ASSERT_EQ(table.size(), expected.size());
  for (std::size_t i = 0; i < table.size(); ++i) {
    std::istringstream row(expected[i].substr(expected[i].find(": ") + 2));
    EXPECT_EQ(table[i].name, expected[i].substr(0, expected[i].find(": ")));
    for (const std::string& digest : table[i].digests) {
      std::string column;
      row >> column;
      EXPECT_EQ(digest, column) << table[i].name << " on level " << vectorLevelName(level);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Levels, Digests,
                         testing::Combine(testing::ValuesIn(supportedLevels()), testing::Bool()));

TEST(Failures, AreThoseOfTheTable) {
  const std::vector<std::string> table = failureTable(), expected = checkedIn("failures.txt");
  for (std::size_t i = 0; i < table.size(); ++i) {
    ASSERT_EQ(table[i], i < expected.size() ? expected[i] : "") << "line " << i;
  }
  EXPECT_EQ(table.size(), expected.size());
}

}  // namespace
}  // namespace lumora::test
