// Choice of the vector level: kernels are compiled once per level of the processor family, each
// time into the Highway namespace of that level, and one level is picked per process.
#pragma once

namespace lumora {

#if defined(__x86_64__)
#define LUMORA_FOR_EACH_LEVEL(DO, ...) \
  DO(N_SSSE3, __VA_ARGS__) DO(N_AVX2, __VA_ARGS__) DO(N_AVX3, __VA_ARGS__)
inline constexpr int kVectorLevelCount = 3;
#elif defined(__wasm__)
#define LUMORA_FOR_EACH_LEVEL(DO, ...) DO(N_WASM, __VA_ARGS__)
inline constexpr int kVectorLevelCount = 1;
#else
#define LUMORA_FOR_EACH_LEVEL(DO, ...) DO(N_NEON, __VA_ARGS__)
inline constexpr int kVectorLevelCount = 1;
#endif

// Levels are numbered from the lowest, 0, upwards.
const char* vectorLevelName(int level);
bool vectorLevelSupported(int level);

// The level in use: the highest one that the processor has, or the forced one; -1 when the
// processor has none. Every kernel call goes through it, so a handle is refused at -1.
int vectorLevel();

// For tests and benchmarks: uses this level from now on; -1 returns to the choice by processor.
void forceVectorLevel(int level);

#define LUMORA_DECLARE_AT_LEVEL_(level, Type, name) \
  namespace level {                                 \
  extern const Type name;                           \
  }
#define LUMORA_ADDRESS_AT_LEVEL_(level, Type, name) &level::name,

// LUMORA_PER_LEVEL(Type, name): declares the constant `name` of every level (defined by the level
// sources as `const Type name = ...` inside their namespace) and the function name() that gives the
// one in use. The function has internal linkage so that no level's copy can stand in for another's.
#define LUMORA_PER_LEVEL(Type, name)                                  \
  LUMORA_FOR_EACH_LEVEL(LUMORA_DECLARE_AT_LEVEL_, Type, name)         \
  [[maybe_unused]] static inline const Type& name() {                 \
    static constexpr const Type* kLevels[] = {                        \
        LUMORA_FOR_EACH_LEVEL(LUMORA_ADDRESS_AT_LEVEL_, Type, name)}; \
    return *kLevels[vectorLevel()];                                   \
  }

}  // namespace lumora
