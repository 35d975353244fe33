// What a careless or hostile host passes: values in range, near the limits, and anything.
#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>

namespace lumora::fuzz {

inline bool oneIn(FuzzedDataProvider& in, int count) {
  return in.ConsumeIntegralInRange(0, count - 1) == 0;
}

// For what takes long: never where the input has come to its end, as the function above says yes
// to.
inline bool rarely(FuzzedDataProvider& in, int count) {
  return in.ConsumeIntegralInRange(1, count) == count;
}

template <class T>
T anyNumber(FuzzedDataProvider& in) {
  static constexpr std::int64_t kNotable[] = {
      0,  1,  2,   3,   7,    8,    15,    16,    17,        32,        33,         64,       87,
      88, 89, 255, 256, 1024, 2000, 20000, 20001, INT32_MAX, INT32_MIN, UINT32_MAX, -1000000, -1};
  return in.ConsumeBool() ? static_cast<T>(in.PickValueInArray(kNotable)) : in.ConsumeIntegral<T>();
}

// In [first, last] three times out of four.
template <class T>
T mostlyIn(FuzzedDataProvider& in, T first, T last) {
  if (oneIn(in, 4)) return anyNumber<T>(in);
  return in.ConsumeIntegralInRange<T>(first, last);
}

}  // namespace lumora::fuzz
