# What `cmake --install` puts where. Three components, each of use alone:
#   daemon       at-server, and what systemd needs to run it
#   tools        atctl, modemsim, cfgctl, the scenarios
#   development  for module authors: headers, client library, find_package and pkg-config files, documents
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

option(AT_INSTALL_SYSTEMD "Install the systemd service, the user that it runs as and the directories that it needs" ON)
set(AT_SERVICE_USER "at-server" CACHE STRING "User that the service runs as, and its group")
set(AT_TTY_GROUP "dialout" CACHE STRING "Group that owns serial ports on the target")

set(CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

# ---- daemon
if(TARGET at-server)
  install(TARGETS at-server RUNTIME DESTINATION ${CMAKE_INSTALL_SBINDIR} COMPONENT daemon)
  if(AT_INSTALL_SYSTEMD)
    # Written while installing: only then the prefix is known for certain (--prefix, packages).
    set(units ${CMAKE_BINARY_DIR}/packaging)
    foreach(file at-server.service at-server.sysusers at-server.tmpfiles)
      install(CODE "
        set(AT_DAEMON_PATH \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_SBINDIR}/at-server\")
        set(AT_SERVICE_USER \"${AT_SERVICE_USER}\")
        set(AT_TTY_GROUP \"${AT_TTY_GROUP}\")
        configure_file(\"${CMAKE_SOURCE_DIR}/packaging/systemd/${file}.in\" \"${units}/${file}\" @ONLY)" COMPONENT daemon)
    endforeach()
    install(FILES ${units}/at-server.service DESTINATION lib/systemd/system COMPONENT daemon)
    install(FILES ${units}/at-server.sysusers DESTINATION lib/sysusers.d RENAME at-server.conf COMPONENT daemon)
    install(FILES ${units}/at-server.tmpfiles DESTINATION lib/tmpfiles.d RENAME at-server.conf COMPONENT daemon)
  endif()
  file(GLOB pages CONFIGURE_DEPENDS docs/man/at-server.8)
  install(FILES ${pages} DESTINATION ${CMAKE_INSTALL_MANDIR}/man8 COMPONENT daemon)
endif()

# ---- tools
foreach(tool atctl modemsim cfgctl)
  if(TARGET ${tool})
    install(TARGETS ${tool} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
    file(GLOB pages CONFIGURE_DEPENDS docs/man/${tool}.1)
    install(FILES ${pages} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
    install(FILES tools/completion/${tool}.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
            RENAME ${tool} COMPONENT tools)
    file(GLOB completion CONFIGURE_DEPENDS tools/completion/_${tool})
    install(FILES ${completion} DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions COMPONENT tools)
  endif()
endforeach()
if(TARGET modemsim)
  # Where modemsim looks for them: beside its own bin directory.
  install(DIRECTORY scenarios/ DESTINATION share/at-server/scenarios COMPONENT tools FILES_MATCHING PATTERN "*.modem"
    PATTERN "*.rec")
endif()

# ---- development
set(headers_to ${CMAKE_INSTALL_INCLUDEDIR}/at-server)
file(GLOB record_headers CONFIGURE_DEPENDS commands/records_*.h)
install(FILES ${record_headers} commands/command_ids.h DESTINATION ${headers_to}/commands COMPONENT development)
install(FILES records/message.h records/payload.h DESTINATION ${headers_to}/records COMPONENT development)
install(FILES reports/report_records.h DESTINATION ${headers_to}/reports COMPONENT development)

add_library(at_records INTERFACE)
set_target_properties(at_records PROPERTIES EXPORT_NAME records)
target_include_directories(at_records INTERFACE $<INSTALL_INTERFACE:${headers_to}>)
install(FILES client/at_client.h DESTINATION ${headers_to}/client COMPONENT development)
set_target_properties(at_client PROPERTIES EXPORT_NAME client)
target_include_directories(at_client INTERFACE $<INSTALL_INTERFACE:${headers_to}>)
install(TARGETS at_records at_client EXPORT at-server-targets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
set(config_to ${CMAKE_INSTALL_LIBDIR}/cmake/at-server)
install(EXPORT at-server-targets NAMESPACE at-server:: DESTINATION ${config_to} COMPONENT development)
configure_package_config_file(cmake/at-server-config.cmake.in at-server-config.cmake INSTALL_DESTINATION ${config_to})
# Records are agreed between processes: a module is to be built with the headers of the same minor version.
write_basic_package_version_file(at-server-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/at-server-config.cmake ${CMAKE_BINARY_DIR}/at-server-config-version.cmake
        DESTINATION ${config_to} COMPONENT development)

# Found from where the file lies, so that an installation can be moved or staged.
file(RELATIVE_PATH prefix_from_pc "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
string(REGEX REPLACE "/$" "" prefix_from_pc "${prefix_from_pc}")
configure_file(packaging/pkgconfig/at-server.pc.in at-server.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/at-server.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

file(GLOB documents CONFIGURE_DEPENDS docs/*.md)
install(FILES README.md ${documents} DESTINATION share/doc/at-server COMPONENT development)
install(DIRECTORY examples/ DESTINATION share/doc/at-server/examples COMPONENT development
        PATTERN CMakeLists.txt EXCLUDE)
