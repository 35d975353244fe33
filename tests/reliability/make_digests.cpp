// Writes the table of digests:  make_digests RESOURCE_DIR/ TABLE
#include <fstream>

#include "reliability/digest_table.h"

int main(int argc, char** argv) {
  using namespace lumora::test;
  if (argc != 3) return 2;
  std::ofstream file(argv[2]);
  file << "# Digests of results, made by scripts/digests: one row per mode, format and texture "
          "path, "
          "one\n# column per picture size and strength.\n";
  for (const DigestRow& row : digestTable(argv[1], false, allColumns())) {
    file << row.name << ':';
    for (const std::string& digest : row.digests) file << ' ' << digest;
    file << '\n';
  }
  return file.flush() ? 0 : 1;
}
