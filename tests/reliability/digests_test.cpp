// Results are the same on every processor, vector level and count of threads, and the same as they
// were when tests/reliability/digests.txt was made (scripts/digests makes it anew).
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "reliability/digest_table.h"
#include "support/captured_log.h"

namespace lumora::test {
namespace {

#if defined(LUMORA_REDUCED_TESTS)
int columns() { return reducedColumns(); }
#else
int columns() { return allColumns(); }
#endif

std::vector<std::string> checkedInRows() {
  std::ifstream file(LUMORA_DIGESTS);
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
  const std::vector<std::string> expected = checkedInRows();
  const std::vector<DigestRow> table = digestTable(LUMORA_RESOURCES, onCaller, columns());
  ASSERT_EQ(table.size(), expected.size());
  for (std::size_t i = 0; i < table.size(); ++i) {
    std::istringstream row(expected[i].substr(expected[i].find(": ") + 2));
    EXPECT_EQ(table[i].name, expected[i].substr(0, expected[i].find(": ")));
    for (const std::string& digest : table[i].digests) {
      std::string checkedIn;
      row >> checkedIn;
      EXPECT_EQ(digest, checkedIn) << table[i].name << " on level " << vectorLevelName(level);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Levels, Digests,
                         testing::Combine(testing::ValuesIn(supportedLevels()), testing::Bool()));

}  // namespace
}  // namespace lumora::test
