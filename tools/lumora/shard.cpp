#include "shard.h"

#include <cstdint>
#include <set>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "errors.h"
#include "words.h"

namespace lumora::tool {
namespace {

constexpr int kMostShares = 1'000'000;

// FNV-1a: the same on every machine, which std::hash need not be.
std::uint64_t hashOf(std::string_view name) {
  std::uint64_t hash = 0xcbf29ce484222325;
  for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
  // The last letters alone would not reach the lower half.
  hash = (hash ^ hash >> 32) * 0x9e3779b97f4a7c15;
  return hash ^ hash >> 32;
}

}  // namespace

Shard parseShard(const std::string& value) {
  const std::vector<int> numbers = parseIntegers(value, '/', 2, "K/N, for example 1/4");
  if (numbers[1] < 1 || numbers[1] > kMostShares) {
    throw UsageError(text("'", value, "': there can be 1 to ", kMostShares, " shares"));
  }
  if (numbers[0] < 1 || numbers[0] > numbers[1]) {
    throw UsageError(text("'", value, "': the shares of ", numbers[1], " are 1/", numbers[1],
                          " to ", numbers[1], '/', numbers[1]));
  }
  return {static_cast<std::size_t>(numbers[0]), static_cast<std::size_t>(numbers[1])};
}

// Dealt like cards. Dealt in the order of the names themselves, one of two machines would get all
// the small pictures of a camera that writes a pair of each.
std::vector<bool> selectShare(const std::vector<std::string>& names, const Shard& shard) {
  std::set<std::pair<std::uint64_t, std::string_view>> shuffled;
  for (const std::string& name : names) shuffled.emplace(hashOf(name), name);
  std::unordered_set<std::string_view> share;
  std::size_t dealt = 0;
  for (const auto& [hash, name] : shuffled) {
    if (dealt++ % shard.count == shard.index - 1) share.insert(name);
  }
  std::vector<bool> selected;
  for (const std::string& name : names) selected.push_back(share.contains(name));
  return selected;
}

}  // namespace lumora::tool
