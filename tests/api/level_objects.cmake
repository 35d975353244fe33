# Objects of one vector level define no weak symbol outside that level's namespace: the linker could
# otherwise take one level's copy of an inline function for all.
foreach(object IN LISTS OBJECTS)
  execute_process(COMMAND ${NM} --demangle --defined-only ${object} OUTPUT_VARIABLE listing
                  COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX MATCHALL "[^\n]* [WVu] [^\n]*" weak "${listing}")
  foreach(symbol IN LISTS weak)
    if(NOT symbol MATCHES "lumora::N_[A-Z0-9]+::")
      message(FATAL_ERROR "${object} defines ${symbol}")
    endif()
  endforeach()
endforeach()
