# Debian packages by CPack, one for each component of AtInstall.cmake. scripts/package makes them.
set(AT_PACKAGE_MAINTAINER "AT server maintainers <maintainers@at-server.invalid>" CACHE STRING
    "Maintainer field of the packages: name and address of whoever publishes them")

# What Debian wants in a package beyond the installed files, and `cmake --install` leaves out.
set(debian ${CMAKE_SOURCE_DIR}/packaging/debian)
foreach(pair daemon:at-server tools:at-server-tools development:libat-client-dev)
  string(REPLACE ":" ";" pair ${pair})
  list(GET pair 0 component)
  list(GET pair 1 package)
  install(FILES ${debian}/copyright ${debian}/changelog DESTINATION share/doc/${package}
          COMPONENT debian_${component} EXCLUDE_FROM_ALL)
  install(FILES ${debian}/${package}.lintian-overrides DESTINATION share/lintian/overrides RENAME ${package}
          COMPONENT debian_${component} EXCLUDE_FROM_ALL)
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package})
  set(CPACK_COMPONENT_${upper}_GROUP ${component})
  set(CPACK_COMPONENT_DEBIAN_${upper}_GROUP ${component})
  list(APPEND CPACK_COMPONENTS_ALL ${component} debian_${component})
endforeach()
# Libraries that are compiled into the tools bring their terms along.
foreach(library libcli11-dev nlohmann-json3-dev)
  if(EXISTS /usr/share/doc/${library}/copyright)
    install(FILES /usr/share/doc/${library}/copyright DESTINATION share/doc/at-server-tools RENAME copyright.${library}
            COMPONENT debian_tools EXCLUDE_FROM_ALL)
  endif()
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME at-server)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT ${AT_PACKAGE_MAINTAINER})
set(CPACK_PACKAGE_VENDOR "AT server maintainers")
# With DESTDIR, so that files that name the prefix name the real one.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
# Packing takes what was built; it does not start to build the checks.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS ${CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS})
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_SOURCE_DIR}/cmake/AtDebianFiles.cmake)

set(CPACK_COMPONENT_DAEMON_DESCRIPTION "server between a cellular modem and a router's modules
The one process that owns the modem's serial port: it takes requests from
other modules as fixed binary records on System V message queues, speaks AT to
the modem, and gives back answers and unsolicited reports the same way.")
set(CPACK_DEBIAN_DAEMON_PACKAGE_SECTION net)
set(CPACK_DEBIAN_DAEMON_PACKAGE_DEPENDS
    "init-system-helpers (>= 1.52), systemd | systemd-sysusers, systemd | systemd-tmpfiles")
set(CPACK_DEBIAN_DAEMON_PACKAGE_RECOMMENDS at-server-tools)
foreach(script postinst prerm postrm)
  configure_file(${debian}/${script}.in ${CMAKE_BINARY_DIR}/packaging/${script} @ONLY
    FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
  list(APPEND CPACK_DEBIAN_DAEMON_PACKAGE_CONTROL_EXTRA ${CMAKE_BINARY_DIR}/packaging/${script})
endforeach()

set(CPACK_COMPONENT_TOOLS_DESCRIPTION "tools for the AT server of a cellular router
atctl asks the server as a module would and shows reports, modemsim is a
simulated modem on a pty, cfgctl reads and writes the configuration store.")
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION net)
set(CPACK_DEBIAN_TOOLS_PACKAGE_RECOMMENDS at-server)

set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "client library of the AT server, for authors of router modules
The records that travel between the AT server and a module, as headers for
C11 and C++, the client library that sends and receives them, and the
documents.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS libc6-dev)

foreach(group daemon tools development)
  string(TOUPPER ${group} upper)
  set(CPACK_COMPONENT_GROUP_${upper}_DESCRIPTION "${CPACK_COMPONENT_${upper}_DESCRIPTION}")
  set(CPACK_DEBIAN_${upper}_DESCRIPTION "${CPACK_COMPONENT_${upper}_DESCRIPTION}")
endforeach()
include(CPack)
