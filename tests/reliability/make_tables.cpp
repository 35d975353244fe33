// Writes the checked-in tables:  make_tables RESOURCE_DIR/ DIGESTS FAILURES
#include <fstream>

#include "reliability/tables.h"

namespace {

bool write(const char* path, const char* head, const std::vector<std::string>& table) {
  std::ofstream file(path);
  file << "# " << head << " Made by scripts/tables.\n";
  for (const std::string& line : table) file << line << '\n';
  return static_cast<bool>(file.flush());
}

}  // namespace

int main(int argc, char** argv) {
  using namespace lumora::test;
  if (argc != 4) return 2;
  const bool written =
      write(argv[2], "Digests of results, a column per picture size and strength.",
            digestTable(argv[1], false, false)) &&
      write(argv[3],
            "Requests of every call, and what it answers when one of them or a worker fails.",
            failureTable());
  return written ? 0 : 1;
}
