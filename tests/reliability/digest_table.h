// The digests of a large matrix of calls with the default texture pack.
#pragma once

#include <string>
#include <vector>

#include "support/mode_calls.h"

namespace lumora::test {

// One row of the table: a mode, format and texture path, and a digest of the result for every
// picture size and strength (those of reducedColumns() first).
struct DigestRow {
  std::string name;
  std::vector<std::string> digests;
};

// How many of a row's digests are computed where calls are slow.
int reducedColumns();

// Computes the table on the vector level in use. Where the count of threads does not matter every
// call takes the form asked for. resourceDir ends in a slash.
std::vector<DigestRow> digestTable(const std::string& resourceDir, bool onCaller, int columns);

int allColumns();

}  // namespace lumora::test
