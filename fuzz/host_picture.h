// Pictures as hosts describe them, right before an inaccessible page.
#pragma once

#include <memory>
#include <vector>

#include "host_values.h"
#include "lumora/filters.h"
#include "support/guarded_buffer.h"

namespace lumora::fuzz {

// A picture record of any content. Where it describes a picture, its memory is exactly that large;
// where it does not, nobody may touch what its address points to.
class HostPicture {
 public:
  explicit HostPicture(FuzzedDataProvider& in);

  const FilterImage& record() const { return image_; }
  bool hasMemory() const { return memory_ != nullptr; }
  std::vector<std::uint8_t> bytes() const;
  void assign(const std::vector<std::uint8_t>& bytes) const;
  // Nothing beside the rows' pixels differs from the earlier bytes.
  bool keepsPadding(const std::vector<std::uint8_t>& before) const;

 private:
  FilterImage image_{};
  std::unique_ptr<test::GuardedBuffer> memory_;
};

// Where a byte read or written is a fault.
std::uint8_t* inaccessibleAddress();

}  // namespace lumora::fuzz
