// Pictures as hosts describe them, right before an inaccessible page.
#pragma once

#include <optional>

#include "host_values.h"
#include "support/test_picture.h"

namespace lumora::fuzz {

// A picture record of any content. Where it describes a picture, its memory is exactly that large;
// where it does not, nobody may touch what its address points to.
class HostPicture {
 public:
  explicit HostPicture(FuzzedDataProvider& in);

  const FilterImage& record() const { return image_; }
  test::Bytes bytes() const { return picture_ ? picture_->snapshot() : test::Bytes(); }
  void assign(const test::Bytes& bytes) { picture_->assign(bytes); }
  bool keepsBorders(const test::Bytes& before, bool alphaToo) const {
    return !picture_ || picture_->keepsBorders(before, alphaToo);
  }

 private:
  FilterImage image_{};
  std::optional<test::TestPicture> picture_;
};

// Where a byte read or written is a fault.
std::uint8_t* inaccessibleAddress();

}  // namespace lumora::fuzz
