// How many pictures may be in memory at a time.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>

namespace lumora::tool {

// "512M", "2G". Throws a UsageError.
std::uint64_t parseMemory(const std::string& value);

// About what a picture takes while it is read, filtered and written in a format (".jpg"). What is
// no file, or none of a picture, counts as if it took all memory.
std::uint64_t memoryFor(const std::string& input, const std::string& outputFormat);

// Gives out memory in the order of asking, so that a large picture gets its turn among small ones.
class MemoryBudget {
 public:
  // Of a process with so many threads at work.
  MemoryBudget(std::uint64_t bytes, std::size_t threads);

  // A share that lasts as long as this object.
  class Lease {
   public:
    Lease(MemoryBudget& budget, std::uint64_t bytes);
    Lease(const Lease&) = delete;
    Lease& operator=(const Lease&) = delete;
    ~Lease();

   private:
    MemoryBudget& budget_;
    std::uint64_t bytes_;
  };

 private:
  const std::uint64_t limit_;  // of what the pictures take
  std::mutex mutex_;
  std::condition_variable changed_;
  std::uint64_t taken_ = 0;
  std::size_t leases_ = 0;
  std::uint64_t nextTicket_ = 0;
  std::uint64_t served_ = 0;
};

}  // namespace lumora::tool
