# Compile settings that every target of the project shares.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
if(NOT CMAKE_SYSTEM_PROCESSOR STREQUAL "wasm32")
  set(CMAKE_POSITION_INDEPENDENT_CODE ON)
endif()
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

option(LUMORA_WERROR "Treat compiler warnings as errors" OFF)
set(LUMORA_SANITIZE "" CACHE STRING "Value for -fsanitize=, for example address,undefined")

find_package(Threads REQUIRED)

# Offsets of files are 64-bit on 32-bit processors too.
add_compile_definitions(_FILE_OFFSET_BITS=64)

# Bytes are the contract: no compiler may fuse a multiplication with an addition.
add_compile_options(-ffp-contract=off)
if(LUMORA_SANITIZE)
  add_compile_options(-fsanitize=${LUMORA_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${LUMORA_SANITIZE})
  # The library is compiled without the types that the check of virtual calls compares.
  add_compile_options(-fno-sanitize=vptr)
  if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    # Programs in C use the library, which is C++.
    add_link_options(-fsanitize-link-c++-runtime)
    set(CMAKE_C_STANDARD_LIBRARIES -lstdc++)
  endif()
endif()

function(lumora_set_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wshadow -Wconversion
                         -Wno-sign-conversion)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "^arm")
    target_compile_options(${target} PRIVATE -Wno-psabi)
  elseif(CMAKE_SYSTEM_PROCESSOR STREQUAL "wasm32")
    # Offsets within a picture are 64-bit; what is in memory has addresses of 32.
    target_compile_options(${target} PRIVATE -Wno-shorten-64-to-32)
  endif()
  if(LUMORA_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
