# at_lmdb: LMDB, the stand-in's store. The installed library; where the target has none, its source in build/lmdb,
# which scripts/fetch-lmdb brings.
add_library(at_lmdb INTERFACE)

if(NOT AT_LMDB_FROM_SOURCE)
  # The archive first: of the shared library a daemon would use a third, and keep all of it in its memory.
  find_library(LMDB_LIBRARY NAMES liblmdb.a lmdb)
  find_path(LMDB_INCLUDE_DIR lmdb.h)
  if(LMDB_LIBRARY AND LMDB_INCLUDE_DIR)
    target_include_directories(at_lmdb SYSTEM INTERFACE ${LMDB_INCLUDE_DIR})
    target_link_libraries(at_lmdb INTERFACE ${LMDB_LIBRARY} Threads::Threads)
    return()
  endif()
  if(NOT CMAKE_CROSSCOMPILING)
    message(FATAL_ERROR "LMDB (liblmdb-dev) is missing: run scripts/setup, or configure with -DAT_PLATFORM=none")
  endif()
endif()

set(AT_LMDB_SOURCE ${CMAKE_SOURCE_DIR}/build/lmdb CACHE PATH "Where lmdb.h, mdb.c and midl.c are")
if(NOT EXISTS ${AT_LMDB_SOURCE}/lmdb.h)
  execute_process(COMMAND ${CMAKE_SOURCE_DIR}/scripts/fetch-lmdb)
endif()
if(NOT EXISTS ${AT_LMDB_SOURCE}/lmdb.h)
  message(FATAL_ERROR "This target has no LMDB: run scripts/fetch-lmdb, or configure with -DAT_PLATFORM=none")
endif()
add_library(lmdb STATIC ${AT_LMDB_SOURCE}/mdb.c ${AT_LMDB_SOURCE}/midl.c)
target_include_directories(lmdb SYSTEM PUBLIC ${AT_LMDB_SOURCE})
# Not ours: its warnings are not either.
target_compile_options(lmdb PRIVATE -w -ffunction-sections -fdata-sections)
target_compile_definitions(lmdb PRIVATE _GNU_SOURCE)
target_link_libraries(lmdb PUBLIC Threads::Threads)
target_link_libraries(at_lmdb INTERFACE lmdb)
