// Memory that lies right before an inaccessible page (or right after one), so that one byte too far
// is a fault. The rest of its pages holds canaries, which AddressSanitizer may not even read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace lumora::test {

enum class Placement {
  kBeforePage,  // ends where an inaccessible page begins; starts at any address
  kAfterPage    // starts where an inaccessible page ends
};

class GuardedBuffer {
 public:
  // With `gap` canaries between the data and the page that it lies before.
  explicit GuardedBuffer(std::size_t bytes, Placement placement = Placement::kBeforePage,
                         std::size_t gap = 0);
  explicit GuardedBuffer(const std::vector<std::uint8_t>& content);
  ~GuardedBuffer();
  GuardedBuffer(const GuardedBuffer&) = delete;
  GuardedBuffer& operator=(const GuardedBuffer&) = delete;

  std::uint8_t* data() const { return data_; }
  std::size_t size() const { return bytes_; }
  // Every canary still has its first value.
  bool isIntact() const;

 private:
  // Whether AddressSanitizer takes the canaries for out of bounds.
  void lock(bool locked) const;

  std::size_t bytes_;
  std::size_t mappedBytes_;
  std::uint8_t* mapping_;
  std::uint8_t* first_;  // the accessible pages
  std::uint8_t* end_;
  std::uint8_t* data_;
};

}  // namespace lumora::test
