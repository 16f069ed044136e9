# Run by CPack on the files of the packages: Debian has manual pages and changelogs compressed, and no debugging
# information in static libraries.
file(GLOB_RECURSE found "${CPACK_TEMPORARY_DIRECTORY}/*")
foreach(file IN LISTS found)
  if(file MATCHES "/usr/share/(man/man[1-9]/[^/]*\\.[1-9]|doc/[^/]*/changelog)$")
    execute_process(COMMAND gzip -9n "${file}" COMMAND_ERROR_IS_FATAL ANY)
  elseif(file MATCHES "\\.a$")
    execute_process(COMMAND strip --strip-debug --enable-deterministic-archives "${file}" COMMAND_ERROR_IS_FATAL ANY)
  endif()
endforeach()
