# Installation: the library in both forms, its header, its descriptions for CMake and pkg-config, the
# resource files, and the tool with its manual page and completions.
include(CMakePackageConfigHelpers)

set(LUMORA_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/lumora_filters)
set(LUMORA_RESOURCE_DIR ${CMAKE_INSTALL_DATADIR}/lumora_filters)

install(TARGETS lumora_filters EXPORT lumora_filters
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime
  NAMELINK_COMPONENT development)
install(TARGETS lumora_filters_static EXPORT lumora_filters
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
install(FILES ${PROJECT_SOURCE_DIR}/include/lumora/filters.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/lumora COMPONENT development)

# find_package(lumora_filters) gives lumora_filters::lumora_filters and ..._static.
install(EXPORT lumora_filters NAMESPACE lumora_filters:: DESTINATION ${LUMORA_PACKAGE_DIR}
  COMPONENT development)
configure_package_config_file(${PROJECT_SOURCE_DIR}/packaging/lumora_filters-config.cmake.in
  ${PROJECT_BINARY_DIR}/lumora_filters-config.cmake
  INSTALL_DESTINATION ${LUMORA_PACKAGE_DIR} PATH_VARS LUMORA_RESOURCE_DIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/lumora_filters-config-version.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/lumora_filters-config.cmake
              ${PROJECT_BINARY_DIR}/lumora_filters-config-version.cmake
  DESTINATION ${LUMORA_PACKAGE_DIR} COMPONENT development)

# Relative to the file's own place, so that the installation can be moved.
file(RELATIVE_PATH LUMORA_PREFIX_FROM_PC
     ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" LUMORA_PREFIX_FROM_PC ${LUMORA_PREFIX_FROM_PC})
configure_file(${PROJECT_SOURCE_DIR}/packaging/lumora_filters.pc.in
  ${PROJECT_BINARY_DIR}/lumora_filters.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/lumora_filters.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

if(TARGET lumora_pack)
  install(FILES ${PROJECT_BINARY_DIR}/mixIm.dat DESTINATION ${LUMORA_RESOURCE_DIR}
    COMPONENT runtime)
endif()
install(FILES ${PROJECT_SOURCE_DIR}/packaging/filter.xml DESTINATION ${LUMORA_RESOURCE_DIR}
  COMPONENT runtime)

if(LUMORA_WITH_TOOL)
  install(TARGETS lumora_tool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)

  add_custom_command(OUTPUT ${PROJECT_BINARY_DIR}/lumora.1
    COMMAND ${PROJECT_SOURCE_DIR}/packaging/manpage.sh $<TARGET_FILE:lumora_tool>
            > ${PROJECT_BINARY_DIR}/lumora.1
    DEPENDS lumora_tool ${PROJECT_SOURCE_DIR}/packaging/manpage.sh VERBATIM)
  add_custom_target(lumora_manual ALL DEPENDS ${PROJECT_BINARY_DIR}/lumora.1)
  install(FILES ${PROJECT_BINARY_DIR}/lumora.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
    COMPONENT tools)

  set(completions ${PROJECT_SOURCE_DIR}/packaging/completions)
  install(FILES ${completions}/lumora.bash RENAME lumora COMPONENT tools
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
  install(FILES ${completions}/_lumora COMPONENT tools
    DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
  install(FILES ${completions}/lumora.fish COMPONENT tools
    DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
endif()
