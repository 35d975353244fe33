# What the toolchain offers against faults that are found too late: stack protector, probed stacks,
# control-flow marks, checked calls of the C library and of the standard containers, and tables that
# are read-only once a program runs. A compiler gets what it knows. The vector levels have it, too: by
# instruction counts (bench/instructions.py) no mode is dearer by more than 0.4 %.
include(CheckCompilerFlag)
include(CheckPIESupported)

option(LUMORA_HARDENING "Compile and link with the toolchain's guards" ON)
check_pie_supported()  # without it, programs are linked as the compiler pleases
if(NOT LUMORA_HARDENING)
  return()
endif()

foreach(flag IN ITEMS -fstack-protector-strong -fstack-clash-protection -fcf-protection)
  string(MAKE_C_IDENTIFIER "LUMORA_HAS${flag}" known)
  check_compiler_flag(CXX "-Werror;${flag}" ${known})
  if(${known})
    add_compile_options(${flag})
  endif()
endforeach()
add_compile_definitions($<$<COMPILE_LANGUAGE:CXX>:_GLIBCXX_ASSERTIONS>)
# The optimiser makes the checked calls; sanitizers have their own, which would not see these.
if(NOT LUMORA_SANITIZE)
  add_compile_options("$<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3>")
endif()
add_link_options(LINKER:-z,relro LINKER:-z,now LINKER:-z,noexecstack)
