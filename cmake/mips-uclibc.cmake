# The router as it is: 32-bit big-endian MIPS with uClibc-ng, which scripts/build-uclibc puts into build/uclibc.
include(${CMAKE_CURRENT_LIST_DIR}/ForeignLibc.cmake)
set(CMAKE_SYSTEM_PROCESSOR mips)
get_filename_component(root ${CMAKE_CURRENT_LIST_DIR}/../build/uclibc/root ABSOLUTE)
if(NOT EXISTS ${root}/lib)
  message(FATAL_ERROR "There is no uClibc-ng in ${root}: run scripts/build-uclibc")
endif()
set(headers /usr/mips-linux-gnu/include/c++)
execute_process(COMMAND mips-linux-gnu-gcc -dumpversion OUTPUT_VARIABLE version OUTPUT_STRIP_TRAILING_WHITESPACE)
at_foreign_libc(
  PREFIX mips-linux-gnu-
  INCLUDE ${root}/usr/include
  CXX_INCLUDE ${headers}/${version} ${headers}/${version}/mips-linux-gnu
  LIBRARIES ${root}/usr/lib
  LINK_OPTIONS "--sysroot=${root} -L${root}/lib -Wl,-dynamic-linker,/lib/ld-uClibc.so.1 -Wl,-rpath-link,${root}/lib")
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-mips -L ${root})
