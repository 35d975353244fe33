# WebAssembly, by Debian's Emscripten. The modules run without its own loader.
set(CMAKE_SYSTEM_NAME Generic)
set(CMAKE_SYSTEM_PROCESSOR wasm32)
set(CMAKE_C_COMPILER emcc)
set(CMAKE_CXX_COMPILER em++)
set(CMAKE_AR emar CACHE FILEPATH "")
set(CMAKE_RANLIB emranlib CACHE FILEPATH "")
# There is nothing to run what a check would link; what it asks for are headers.
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
# The include folder of the build machine has headers of its C library: only Highway's are wanted.
set(LUMORA_HIGHWAY_ONLY ON)
list(APPEND CMAKE_PREFIX_PATH /usr)
# The sandbox guards its host, and the runtime has no guard value for stack protectors.
set(LUMORA_HARDENING OFF)
