# The shared library exports the six functions under its version node and, beside them, only the
# replaceable log function.
execute_process(COMMAND ${NM} --dynamic --defined-only --with-symbol-versions ${LIBRARY}
                OUTPUT_VARIABLE listing COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[A-Za-z] [A-Za-z_]+@@LUMORA_FILTERS_3" symbols "${listing}")
string(REGEX MATCHALL "\n" lines "${listing}")
list(LENGTH lines line_count)
list(SORT symbols)
set(expected)
foreach(name IN ITEMS filterDestroy filterInit filterInit_APP filterProcess filterProcess_for_album
        getFilterVersion)
  list(APPEND expected "T ${name}@@LUMORA_FILTERS_3")
endforeach()
list(APPEND expected "W __android_log_print@@LUMORA_FILTERS_3")
# The version node itself is one line more.
if(NOT symbols STREQUAL expected OR NOT line_count EQUAL 8)
  message(FATAL_ERROR "Exported symbols are\n${listing}")
endif()
execute_process(COMMAND ${READELF} --dynamic ${LIBRARY} OUTPUT_VARIABLE dynamic
                COMMAND_ERROR_IS_FATAL ANY)
if(NOT dynamic MATCHES "SONAME[^\n]*\\[liblumora_filters\\.so\\.3\\]")
  message(FATAL_ERROR "The SONAME is missing:\n${dynamic}")
endif()
string(REGEX MATCHALL "NEEDED[^\n]*" needed "${dynamic}")
foreach(library IN LISTS needed)
  if(NOT library MATCHES "\\[(libc|libm|libstdc\\+\\+|libgcc_s|libpthread|ld-linux[^]]*)\\.so")
    message(FATAL_ERROR "A dependency beyond the C and C++ libraries: ${library}")
  endif()
endforeach()
