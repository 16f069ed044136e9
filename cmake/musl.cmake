# This machine's processor with musl (Debian's musl-tools), linked statically as a firmware's single program is.
include(${CMAKE_CURRENT_LIST_DIR}/ForeignLibc.cmake)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
execute_process(COMMAND x86_64-linux-gnu-gcc -dumpversion OUTPUT_VARIABLE version OUTPUT_STRIP_TRAILING_WHITESPACE)
at_foreign_libc(
  PREFIX x86_64-linux-gnu-
  INCLUDE /usr/include/x86_64-linux-musl
  CXX_INCLUDE /usr/include/c++/${version} /usr/include/x86_64-linux-gnu/c++/${version}
  LIBRARIES /usr/lib/x86_64-linux-musl
  LINK_OPTIONS "-static")
set(AT_ROUTER_SERVER_IN_ONE ON)
