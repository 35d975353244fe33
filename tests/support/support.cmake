# lumora_add_support(name faults...): what tests and fuzzers share - the captured log, guarded pictures
# and, of those listed, the faults. Faults are made by standing in for functions of the C library, in
# everything that a program is linked from but the shared libraries. The library comes behind its
# stand-ins, so they are asked for by name.
set(LUMORA_SUPPORT_DIR ${CMAKE_CURRENT_LIST_DIR})
set(LUMORA_ALL_FAULTS counting_heap file_faults thread_faults)
set(counting_heap_functions malloc realloc free)
set(file_faults_functions fdopen fread fseeko64 ftello64)
set(thread_faults_functions pthread_create)

function(lumora_add_support name)
  add_library(${name} STATIC)
  foreach(source IN ITEMS captured_log guarded_buffer mode_calls test_allocator test_picture
          LISTS ARGN)
    target_sources(${name} PRIVATE ${LUMORA_SUPPORT_DIR}/${source}.cpp)
    foreach(function IN LISTS ${source}_functions)
      target_link_options(${name} INTERFACE
        LINKER:--wrap=${function},--undefined=__wrap_${function})
    endforeach()
  endforeach()
  target_link_libraries(${name} PUBLIC lumora_internal)
  target_include_directories(${name} PUBLIC ${LUMORA_SUPPORT_DIR}/..)
  lumora_set_warnings(${name})
endfunction()
