// Shares of a run for machines that know nothing of each other.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace lumora::tool {

// Share number `index` of 1..count.
struct Shard {
  std::size_t index = 1;
  std::size_t count = 1;
};

// "2/8". Throws a UsageError.
Shard parseShard(const std::string& value);

// Which of the names belong to the share. Every name belongs to exactly one share of `count`, equal
// names to the same; the shares' sizes differ by one name at most, and depend on nothing but the
// set of names.
std::vector<bool> selectShare(const std::vector<std::string>& names, const Shard& shard);

}  // namespace lumora::tool
