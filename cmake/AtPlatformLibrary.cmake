# at_platform from the router's own library, proved while configuring: a library that lacks a function is named here
# and not in the linker's words an hour later.

# at_platform_library("FILE[;FILE...]"): the first file (.a, .so or .o) gives the functions of platform/platform.h,
# the others are what it needs in turn, for a static library cannot say so itself.
function(at_platform_library files)
  if("${files}" STREQUAL "")
    message(FATAL_ERROR "AT_PLATFORM is empty. It is 'host', 'none', or the full path of the router's library (.a, .so or "
      ".o); several files are separated by semicolons.")
  endif()
  set(paths "")
  foreach(file IN LISTS files)
    get_filename_component(path "${file}" ABSOLUTE BASE_DIR ${CMAKE_SOURCE_DIR})
    if(NOT EXISTS "${path}" OR IS_DIRECTORY "${path}")
      message(FATAL_ERROR "AT_PLATFORM is neither 'host' nor 'none', and there is no library ${path}. Give the full "
        "path of the router's library (.a, .so or .o); several files are separated by semicolons.")
    endif()
    list(APPEND paths "${path}")
  endforeach()

  at_prove_platform("${paths}")
  add_library(at_platform INTERFACE)
  target_include_directories(at_platform INTERFACE ${CMAKE_SOURCE_DIR})
  target_link_libraries(at_platform INTERFACE ${paths} Threads::Threads)
endfunction()

# Links a program that uses every function of the interface, as the daemon is linked: by the C driver.
function(at_prove_platform paths)
  set(functions cfg_get cfg_set CreateSoftTimer)
  # Toolchain files often forbid try_compile to link.
  set(CMAKE_TRY_COMPILE_TARGET_TYPE EXECUTABLE)
  try_compile(linked
    SOURCES ${CMAKE_SOURCE_DIR}/cmake/platform_proof.c
    CMAKE_FLAGS -DINCLUDE_DIRECTORIES=${CMAKE_SOURCE_DIR}
    LINK_LIBRARIES ${paths} Threads::Threads
    OUTPUT_VARIABLE output
    NO_CACHE)
  if(linked)
    return()
  endif()

  set(missing "")
  foreach(name ${functions})
    if(output MATCHES "undefined [^\n]*[^A-Za-z0-9_]${name}[^A-Za-z0-9_]")
      list(APPEND missing ${name})
    endif()
  endforeach()
  list(JOIN paths " " shown)
  if(missing)
    list(JOIN missing ", " missing)
    message(FATAL_ERROR "The platform library lacks ${missing}: ${shown}\n"
      "It has to define every function of platform/platform.h, under its C name (extern \"C\" in C++). "
      "platform/example/ shows the smallest one that serves.")
  endif()
  message(FATAL_ERROR "The platform library cannot be linked: ${shown}\n"
    "It is for another processor, or no library at all, or needs libraries of its own; give those too: "
    "-DAT_PLATFORM=\"FIRST;SECOND\". The linker said:\n${output}")
endfunction()
