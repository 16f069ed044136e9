# at_options: what every target of the project is compiled with.
# at_freestanding: what the daemon is compiled with on top, so that it needs the C library alone.

find_package(Threads REQUIRED)

add_library(at_options INTERFACE)
target_compile_definitions(at_options INTERFACE _GNU_SOURCE)
target_compile_options(at_options INTERFACE
  -Wall -Wextra $<$<BOOL:${AT_WARNINGS_ARE_ERRORS}>:-Werror> -Wshadow -Wconversion -Wformat=2 -Wundef -Wcast-align -Wvla
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual -Wextra-semi -Wold-style-cast>
  -fno-strict-aliasing -ffunction-sections -fdata-sections)
target_link_options(at_options INTERFACE -Wl,--gc-sections)
target_link_libraries(at_options INTERFACE Threads::Threads)

# Programs stand at fixed addresses: what points into a table is known when the program is linked. Else each pointer
# of a table would need a relocation of its own, and its page, written at start-up, would be no longer shared with the
# file. The sanitizers bring a layout of their own.
if(NOT AT_SANITIZE)
  set(fixed_addresses -fno-pie)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "^mips")
    # Addresses in the instructions and a jump table for the C library, in place of a word in the GOT for every
    # variable and function.
    list(APPEND fixed_addresses -mno-shared -mplt)
  endif()
  set(pic $<BOOL:$<TARGET_PROPERTY:POSITION_INDEPENDENT_CODE>>)
  target_compile_options(at_options INTERFACE $<$<NOT:${pic}>:${fixed_addresses}>)
  target_link_options(at_options INTERFACE $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-no-pie>)
endif()

if(AT_SANITIZE)
  target_compile_options(at_options INTERFACE
    -fsanitize=${AT_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(at_options INTERFACE -fsanitize=${AT_SANITIZE})
endif()

# at_version: AT_VERSION, the project's version as a text. Programs print it for --version.
add_library(at_version INTERFACE)
target_compile_definitions(at_version INTERFACE AT_VERSION="${PROJECT_VERSION}")

if(AT_COVERAGE)
  target_compile_options(at_options INTERFACE --coverage -fprofile-update=atomic)
  target_link_options(at_options INTERFACE --coverage)
endif()

add_library(at_freestanding INTERFACE)
target_compile_options(at_freestanding INTERFACE
  $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti -fno-threadsafe-statics>
  # Nothing unwinds the stack of a daemon without exceptions; a debugger has its own tables.
  -fno-asynchronous-unwind-tables -fno-unwind-tables)

# Links a program with the C driver, without the C++ library: the router has none. A macro, since CMake reads the
# variable in the folder of the program.
macro(at_link_with_c program)
  set(CMAKE_CXX_IMPLICIT_LINK_LIBRARIES "")
  set_target_properties(${program} PROPERTIES LINKER_LANGUAGE C)
endmacro()
