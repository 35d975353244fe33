// Writes the checked-in tables:  make_tables RESOURCE_DIR/ DIGESTS FAILURES
#include <fstream>

#include "reliability/digest_table.h"
#include "reliability/failure_table.h"

int main(int argc, char** argv) {
  using namespace lumora::test;
  if (argc != 4) return 2;
  std::ofstream digests(argv[2]), failures(argv[3]);
  digests << "# Digests of results, made by scripts/tables: one row per mode, format and texture "
             "path, one\n# column per picture size and strength.\n";
  for (const DigestRow& row : digestTable(argv[1], false, allColumns())) {
    digests << row.name << ':';
    for (const std::string& digest : row.digests) digests << ' ' << digest;
    digests << '\n';
  }
  failures
      << "# Requests of every call, and what it answers when one of them or one worker fails:\n"
         "# status and error messages. Made by scripts/tables.\n";
  for (const std::string& line : failureTable()) failures << line << '\n';
  return digests.flush() && failures.flush() ? 0 : 1;
}
