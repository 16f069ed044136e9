# For toolchain files: a C library that the compiler was not built for, as on a router, whose own toolchain needs none
# of this. There is no C++ library on it, so the tools that want one are left out.
#   at_foreign_libc(PREFIX INCLUDE CXX_INCLUDE... LIBRARIES LINK_OPTIONS)
# PREFIX: of the compilers; INCLUDE: the library's headers; CXX_INCLUDE: the compiler's C++ headers; LIBRARIES: the
# folder of the library and its start files; LINK_OPTIONS: what else a program is linked with.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(AT_CXX_LIBRARY OFF)
set(AT_LMDB_FROM_SOURCE ON)
set(AT_FOREIGN_LIBC_HEADER ${CMAKE_CURRENT_LIST_DIR}/foreign_libc.h)

macro(at_foreign_libc)
  cmake_parse_arguments(libc "" "PREFIX;INCLUDE;LIBRARIES;LINK_OPTIONS" "CXX_INCLUDE" ${ARGN})
  set(CMAKE_C_COMPILER ${libc_PREFIX}gcc)
  set(CMAKE_CXX_COMPILER ${libc_PREFIX}g++)
  execute_process(COMMAND ${CMAKE_C_COMPILER} -print-file-name=include
                  OUTPUT_VARIABLE libc_compiler_include OUTPUT_STRIP_TRAILING_WHITESPACE)

  set(CMAKE_C_FLAGS_INIT "-nostdinc -isystem ${libc_compiler_include} -isystem ${libc_INCLUDE}")
  list(TRANSFORM libc_CXX_INCLUDE PREPEND "-isystem ")
  list(JOIN libc_CXX_INCLUDE " " libc_cxx_headers)
  # <atomic> drags in mutexes for its waiting, which nobody uses.
  set(CMAKE_CXX_FLAGS_INIT "-nostdinc -nostdinc++ -D_GLIBCXX_ATOMIC_WAIT_H -include ${AT_FOREIGN_LIBC_HEADER} ${libc_cxx_headers} -isystem ${libc_compiler_include} -isystem ${libc_INCLUDE}")
  # Not position-independent: every address is known when the program is linked, so that tables need no relocations.
  set(CMAKE_C_LINK_EXECUTABLE "<CMAKE_C_COMPILER> <FLAGS> <LINK_FLAGS> -no-pie -nostdlib ${libc_LINK_OPTIONS} ${libc_LIBRARIES}/crt1.o ${libc_LIBRARIES}/crti.o <OBJECTS> -o <TARGET> -L${libc_LIBRARIES} <LINK_LIBRARIES> -lc -lgcc ${libc_LIBRARIES}/crtn.o")
endmacro()
