// Memory that ends right before an inaccessible page and starts right after one where its size
// allows, so that one byte too far is a fault.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lumora::test {

class GuardedBuffer {
 public:
  explicit GuardedBuffer(std::size_t bytes);
  ~GuardedBuffer();
  GuardedBuffer(const GuardedBuffer&) = delete;
  GuardedBuffer& operator=(const GuardedBuffer&) = delete;

  std::uint8_t* data() const { return data_; }
  std::size_t size() const { return bytes_; }
  // The bytes between the page in front and the data still have their first value.
  bool frontIsIntact() const;

 private:
  std::size_t bytes_;
  std::size_t mappedBytes_;
  std::uint8_t* mapping_;
  std::uint8_t* front_;
  std::uint8_t* data_;
};

}  // namespace lumora::test
