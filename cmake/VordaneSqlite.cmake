# SQLite as an amalgamation made from Debian's source package: one engine for Linux and Windows alike.
execute_process(COMMAND ${PROJECT_SOURCE_DIR}/tools/setup/sqlite.sh
  OUTPUT_VARIABLE VORDANE_SQLITE_DIR OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)

add_library(sqlite3_amalgamation STATIC ${VORDANE_SQLITE_DIR}/sqlite3.c)
target_include_directories(sqlite3_amalgamation SYSTEM PUBLIC ${VORDANE_SQLITE_DIR})
# A double-quoted text is never an identifier here (DQS=0), one thread uses a connection at a time,
# and what the product has no use for is left out.
target_compile_definitions(sqlite3_amalgamation PUBLIC
  SQLITE_DQS=0 SQLITE_THREADSAFE=2 SQLITE_DEFAULT_MEMSTATUS=0 SQLITE_OMIT_DEPRECATED
  SQLITE_OMIT_LOAD_EXTENSION SQLITE_OMIT_SHARED_CACHE SQLITE_LIKE_DOESNT_MATCH_BLOBS
  SQLITE_ENABLE_STAT4 SQLITE_USE_ALLOCA)
# The sanitizers look at this product's code; going over SQLite too would take minutes of every build.
target_compile_options(sqlite3_amalgamation PRIVATE -w -O2 -fno-sanitize=all)
if(NOT WIN32)
  target_link_libraries(sqlite3_amalgamation PUBLIC pthread m)
  # Without it a wait for a lock is rounded up to whole seconds.
  target_compile_definitions(sqlite3_amalgamation PRIVATE HAVE_USLEEP=1)
else()
  # Reading a page at a place named in the call sends a completion message each time under Wine; moving the file's
  # pointer first doesn't, and on Windows it costs next to nothing.
  target_compile_definitions(sqlite3_amalgamation PRIVATE SQLITE_WIN32_NO_OVERLAPPED=1)
endif()
