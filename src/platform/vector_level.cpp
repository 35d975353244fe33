#include "platform/vector_level.h"

#if defined(__x86_64__)
#include <cpuid.h>
#endif

#include <atomic>

namespace lumora {
namespace {

std::atomic<int> forcedLevel{-1};

#if defined(__x86_64__)
// Half floats have no name in every compiler's check; their registers are those of AVX.
bool hasF16c() {
  unsigned a = 0, b = 0, c = 0, d = 0;
  return __get_cpuid(1, &a, &b, &c, &d) != 0 && (c & bit_F16C) != 0;
}
#endif

int highestSupportedLevel() {
  for (int level = kVectorLevelCount - 1; level >= 0; --level) {
    if (vectorLevelSupported(level)) return level;
  }
  return -1;
}

}  // namespace

#if defined(__x86_64__)

const char* vectorLevelName(int level) {
  static constexpr const char* kNames[kVectorLevelCount] = {"ssse3", "avx2", "avx512"};
  return level >= 0 && level < kVectorLevelCount ? kNames[level] : "none";
}

// The compiler's check also asks whether the operating system saves the wide registers. Each level
// needs just what its sources are compiled with.
bool vectorLevelSupported(int level) {
  __builtin_cpu_init();
  const bool ssse3 = __builtin_cpu_supports("ssse3");
  const bool avx2 = ssse3 && __builtin_cpu_supports("sse4.2") && __builtin_cpu_supports("avx2") &&
                    __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2") &&
                    __builtin_cpu_supports("fma") && hasF16c();
  const bool avx512 = avx2 && __builtin_cpu_supports("avx512f") &&
                      __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512cd") &&
                      __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl");
  switch (level) {
    case 0: return ssse3;
    case 1: return avx2;
    case 2: return avx512;
    default: return false;
  }
}

#else

#if defined(__wasm__)
constexpr const char* kOnlyLevel = "wasm";
#else
constexpr const char* kOnlyLevel = "neon";
#endif

const char* vectorLevelName(int level) { return level == 0 ? kOnlyLevel : "none"; }

// NEON is the baseline of the builds for ARM; a module with vectors does not load without them.
bool vectorLevelSupported(int level) { return level == 0; }

#endif

int vectorLevel() {
  static const int chosen = highestSupportedLevel();
  const int forced = forcedLevel.load(std::memory_order_relaxed);
  return forced >= 0 ? forced : chosen;
}

void forceVectorLevel(int level) { forcedLevel.store(level, std::memory_order_relaxed); }

}  // namespace lumora
