#include "limit.h"

#include "pixels/vectors.h"

namespace lumora::HWY_NAMESPACE {
namespace {

struct XorStep {
  HWY_INLINE V8 operator()(V8 v) const { return hn::Xor(v, hn::Set(d8, 255)); }
  HWY_INLINE std::uint8_t operator()(std::uint8_t v) const {
    return static_cast<std::uint8_t>(v ^ 255);
  }
};

struct AddStep {
  HWY_INLINE V8 operator()(V8 v) const { return hn::Add(v, hn::Set(d8, 1)); }
  HWY_INLINE std::uint8_t operator()(std::uint8_t v) const {
    return static_cast<std::uint8_t>(v + 1);
  }
};

template <class Step>
void inPlace(std::uint8_t* bytes, std::size_t count) {
  const Step step;
  std::size_t i = 0;
  for (; count - i >= 4 * kLanes8; i += 4 * kLanes8) {
    std::uint8_t* const at = bytes + i;
    const V8 a = hn::LoadU(d8, at), b = hn::LoadU(d8, at + kLanes8);
    const V8 c = hn::LoadU(d8, at + 2 * kLanes8), d = hn::LoadU(d8, at + 3 * kLanes8);
    hn::StoreU(step(a), d8, at);
    hn::StoreU(step(b), d8, at + kLanes8);
    hn::StoreU(step(c), d8, at + 2 * kLanes8);
    hn::StoreU(step(d), d8, at + 3 * kLanes8);
  }
  for (; i < count; ++i) bytes[i] = step(bytes[i]);
}

}  // namespace

const InPlacePass kXorPass = inPlace<XorStep>;
const InPlacePass kAddPass = inPlace<AddStep>;

}  // namespace lumora::HWY_NAMESPACE
