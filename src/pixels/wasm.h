// Functions of Highway 1.0 that do badly for WebAssembly. Included ahead of every source of that
// level, so that the overloads here are what each call finds, Highway's own calls too.
#pragma once

#include <wasm_simd128.h>

#include "hwy/highway.h"

namespace hwy::HWY_NAMESPACE {

using Bytes = Vec128<std::uint8_t>;
using SignedBytes = Vec128<std::int8_t>;

// Highway's looks up one byte after the other. An index above 15 gives 0.
HWY_INLINE Bytes TableLookupBytes(Bytes table, Bytes indices) {
  return Bytes{wasm_i8x16_swizzle(table.raw, indices.raw)};
}
HWY_INLINE SignedBytes TableLookupBytes(SignedBytes table, SignedBytes indices) {
  return SignedBytes{wasm_i8x16_swizzle(table.raw, indices.raw)};
}

// Clang 14 takes what Highway makes of these apart, lane by lane, where the integers become floats.
HWY_INLINE Vec128<std::int32_t> PromoteTo(Simd<std::int32_t, 4, 0>, Vec128<std::uint8_t, 4> bytes) {
  const v128_t places = wasm_u32x4_const(0x80808000, 0x80808001, 0x80808002, 0x80808003);
  return Vec128<std::int32_t>{wasm_i8x16_swizzle(bytes.raw, places)};
}

// Clang 14 makes Highway's a load that repeats the bytes, and moves stores ahead of such loads. It
// does not where it cannot see that the number comes from memory.
template <class Number>
HWY_INLINE Number loadOpaque(const void* bytes) {
  Number number;
  CopyBytes<sizeof number>(bytes, &number);
  asm("" : "+r"(number));
  return number;
}
HWY_INLINE Vec128<std::uint8_t, 4> Load(Simd<std::uint8_t, 4, 0>, const std::uint8_t* bytes) {
  return Vec128<std::uint8_t, 4>{wasm_i32x4_splat(loadOpaque<std::int32_t>(bytes))};
}
// This load widens, which is in order; most who load half a vector widen it, so no more is lost.
HWY_INLINE Vec128<std::uint8_t, 8> Load(Simd<std::uint8_t, 8, 0>, const std::uint8_t* bytes) {
  const v128_t wide = wasm_u16x8_load8x8(bytes);
  return Vec128<std::uint8_t, 8>{wasm_u8x16_narrow_i16x8(wide, wide)};
}

}  // namespace hwy::HWY_NAMESPACE
