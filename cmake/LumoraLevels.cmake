# Vector levels: sources under LEVEL_SOURCES are compiled once per level of the target processor,
# each time into the Highway namespace of that level, and the process picks one level when it runs.
# Highway is used compile-only-static, so nothing of its shared library is linked.
find_path(LUMORA_HIGHWAY_INCLUDE hwy/highway.h REQUIRED)
if(LUMORA_HIGHWAY_ONLY)
  file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/highway)
  file(CREATE_LINK ${LUMORA_HIGHWAY_INCLUDE}/hwy ${PROJECT_BINARY_DIR}/highway/hwy SYMBOLIC)
  set(LUMORA_HIGHWAY_INCLUDE ${PROJECT_BINARY_DIR}/highway)
endif()

set(LUMORA_AVX2_FLAGS -msse4.2 -mavx2 -mbmi -mbmi2 -mfma -mf16c -DHWY_DISABLE_PCLMUL_AES)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # Where a loop runs out of registers GCC rebuilds vector constants in it from general registers;
  # without moves between the two it keeps them in memory and uses them from there.
  list(APPEND LUMORA_AVX2_FLAGS -mtune-ctrl=^inter_unit_moves_to_vec)
endif()
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|amd64)$")
  set(LUMORA_LEVELS ssse3 avx2 avx512)
  set(LUMORA_LEVEL_FLAGS_ssse3 -mssse3 -DHWY_DISABLE_PCLMUL_AES)
  set(LUMORA_LEVEL_FLAGS_avx2 ${LUMORA_AVX2_FLAGS})
  set(LUMORA_LEVEL_FLAGS_avx512 ${LUMORA_AVX2_FLAGS}
      -mavx512f -mavx512bw -mavx512cd -mavx512dq -mavx512vl)
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64)$")
  set(LUMORA_LEVELS neon)
  set(LUMORA_LEVEL_FLAGS_neon -march=armv8-a+crypto)
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^arm")
  set(LUMORA_LEVELS neon)
  set(LUMORA_LEVEL_FLAGS_neon -mfpu=neon)
elseif(CMAKE_SYSTEM_PROCESSOR STREQUAL "wasm32")
  set(LUMORA_LEVELS wasm)
  set(LUMORA_LEVEL_FLAGS_wasm -msimd128 -include ${PROJECT_SOURCE_DIR}/src/pixels/wasm.h)
else()
  message(FATAL_ERROR "No vector level is defined for ${CMAKE_SYSTEM_PROCESSOR}")
endif()

# lumora_library(name SOURCES ... LEVEL_SOURCES ... LINKS ...)
# One folder of the library. Its objects end up in every form of the library.
function(lumora_library name)
  cmake_parse_arguments(arg "" "" "SOURCES;LEVEL_SOURCES;LINKS" ${ARGN})
  if(arg_SOURCES)
    add_library(${name} OBJECT ${arg_SOURCES})
    set(scope PUBLIC)
    _lumora_prepare_objects(${name})
  else()
    add_library(${name} INTERFACE)
    set(scope INTERFACE)
  endif()
  target_include_directories(${name} ${scope} ${PROJECT_SOURCE_DIR}/src
                                              ${PROJECT_SOURCE_DIR}/include)
  target_link_libraries(${name} ${scope} ${arg_LINKS})
  file(RELATIVE_PATH folder ${PROJECT_SOURCE_DIR}/src ${CMAKE_CURRENT_SOURCE_DIR})
  set_property(GLOBAL APPEND_STRING PROPERTY LUMORA_FOLDERS "${folder} ${name} ${arg_LINKS}\n")
  if(arg_LEVEL_SOURCES)
    foreach(level IN LISTS LUMORA_LEVELS)
      add_library(${name}_${level} OBJECT ${arg_LEVEL_SOURCES})
      target_link_libraries(${name}_${level} PRIVATE ${name})
      target_include_directories(${name}_${level} SYSTEM PRIVATE ${LUMORA_HIGHWAY_INCLUDE})
      # Highway's own checks, which sanitizers switch on, are in its shared library.
      target_compile_definitions(${name}_${level} PRIVATE HWY_COMPILE_ONLY_STATIC
                                                          HWY_IS_DEBUG_BUILD=0)
      # These sources say themselves what is a vector; left to it, the compiler packs the walks'
      # pointers into vectors and back.
      target_compile_options(${name}_${level} PRIVATE ${LUMORA_LEVEL_FLAGS_${level}}
                                                      -fno-tree-slp-vectorize)
      _lumora_prepare_objects(${name}_${level})
    endforeach()
  endif()
endfunction()

function(_lumora_prepare_objects target)
  lumora_set_warnings(${target})
  target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti>)
  set_property(GLOBAL APPEND PROPERTY LUMORA_OBJECT_TARGETS ${target})
endfunction()
