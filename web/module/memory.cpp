// The C library's own functions move words of four bytes; whole pictures go through these.
#include <wasm_simd128.h>

#include <cstddef>
#include <cstdint>

namespace {

constexpr std::size_t kVector = 16;

}  // namespace

extern "C" void* memcpy(void* __restrict to, const void* __restrict from, std::size_t bytes) {
  auto* out = static_cast<std::uint8_t*>(to);
  auto* in = static_cast<const std::uint8_t*>(from);
  for (; bytes >= 4 * kVector; bytes -= 4 * kVector, in += 4 * kVector, out += 4 * kVector) {
    const v128_t a = wasm_v128_load(in), b = wasm_v128_load(in + kVector);
    const v128_t c = wasm_v128_load(in + 2 * kVector), d = wasm_v128_load(in + 3 * kVector);
    wasm_v128_store(out, a);
    wasm_v128_store(out + kVector, b);
    wasm_v128_store(out + 2 * kVector, c);
    wasm_v128_store(out + 3 * kVector, d);
  }
  for (; bytes >= kVector; bytes -= kVector, in += kVector, out += kVector) {
    wasm_v128_store(out, wasm_v128_load(in));
  }
  for (; bytes > 0; --bytes) *out++ = *in++;
  return to;
}

extern "C" void* memset(void* to, int value, std::size_t bytes) {
  auto* out = static_cast<std::uint8_t*>(to);
  const v128_t all = wasm_i8x16_splat(static_cast<std::int8_t>(value));
  for (; bytes >= kVector; bytes -= kVector, out += kVector) wasm_v128_store(out, all);
  for (; bytes > 0; --bytes) *out++ = static_cast<std::uint8_t>(value);
  return to;
}
