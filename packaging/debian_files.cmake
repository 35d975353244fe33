# Run by CPack between staging the components and packing them: gives every package its copyright
# and change log, and compresses the manual page.
function(compressed source result)
  execute_process(COMMAND gzip -9nc ${source} OUTPUT_FILE ${result} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

set(copyright "Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/
Upstream-Name: lumora_filters

Files: *
Copyright: 2026 the lumora_filters contributors
License: Apache-2.0
 On Debian systems, the text of the Apache License, Version 2.0, is in
 /usr/share/common-licenses/Apache-2.0.
")

set(change_log ${CPACK_TEMPORARY_DIRECTORY}/changelog.Debian)
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(WRITE ${change_log}
"lumora-filters (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; urgency=medium

  * Version ${CPACK_PACKAGE_VERSION}; changelog.gz says what is in it.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
")

foreach(entry IN LISTS CPACK_LUMORA_PACKAGE_NAMES)
  string(REPLACE "=" ";" entry ${entry})
  list(GET entry 0 component)
  list(GET entry 1 package)
  set(staged ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr/share)
  if(NOT IS_DIRECTORY ${CPACK_TEMPORARY_DIRECTORY}/${component})
    continue()
  endif()
  set(doc ${staged}/doc/${package})
  file(MAKE_DIRECTORY ${doc})
  file(WRITE ${doc}/copyright "${copyright}")
  compressed(${change_log} ${doc}/changelog.Debian.gz)
  compressed(${CPACK_LUMORA_SOURCE_DIR}/CHANGELOG.md ${doc}/changelog.gz)
  set(page ${staged}/man/man1/lumora.1)
  if(EXISTS ${page})
    compressed(${page} ${page}.gz)
    file(REMOVE ${page})
  endif()
endforeach()
file(REMOVE ${change_log})
