# What every target of this project is compiled with.
option(VORDANE_SANITIZE "Build with the address and undefined-behaviour sanitizers" OFF)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)

# What was compiled once, in whatever folder, comes out of the compiler cache. It may take a compiled header's
# macros and times for what they are, since the header is compiled by the same build.
find_program(VORDANE_CCACHE NAMES ccache)
if(VORDANE_CCACHE)
  set(launcher ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1
    CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime ${VORDANE_CCACHE})
  set(CMAKE_C_COMPILER_LAUNCHER ${launcher})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${launcher})
endif()

# Clang builds what is sanitized: it checks the same and compiles a test in an eighth of GCC's time.
if(VORDANE_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer -O1)
  add_link_options(-fsanitize=address,undefined)
endif()

# Fuzz targets are built by clang in a tree of their own (tests/fuzz).
option(VORDANE_FUZZ "Build for the fuzz targets" OFF)
if(VORDANE_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all
    -fno-omit-frame-pointer -O1 -gline-tables-only)
  add_link_options(-fsanitize=address,undefined)
endif()

# What is shipped: with the information for debuggers, which tools/release takes out into files of its own, and with
# nothing of the folder, the day or the machine that it is built in.
option(VORDANE_RELEASE "Build as it is shipped" OFF)
if(VORDANE_RELEASE)
  add_compile_options(-g -ffile-prefix-map=${PROJECT_BINARY_DIR}=build -ffile-prefix-map=${PROJECT_SOURCE_DIR}=vordane
    -ffile-prefix-map=$ENV{HOME}=home)
endif()

if(WIN32)
  # No time of linking in the programs: the same sources give the same bytes.
  add_link_options(-Wl,--no-insert-timestamp)
  # One file to copy: no run-time libraries beside the programs.
  add_link_options(-static)
  add_compile_definitions(UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0A00)
endif()

# One library for each folder of src. Its own warnings are errors, and the compiler that ships it has the say about
# them; third-party code is linked as SYSTEM.
function(vordane_warnings target)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    return()
  endif()
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
    -Woverloaded-virtual -Wimplicit-fallthrough -Werror)
  # GCC 12 takes a literal joined to a text for overlapping copies (its bug 105651).
  if(CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(${target} PRIVATE -Wno-restrict)
  endif()
endfunction()

# With shared libraries a changed source costs one compilation and one link (tests/mutation); never shipped.
option(VORDANE_SHARED "Build the subsystems as shared libraries" OFF)
set(VORDANE_LIBRARY_KIND STATIC)
if(VORDANE_SHARED)
  set(VORDANE_LIBRARY_KIND SHARED)
  set(CMAKE_LINK_DEPENDS_NO_SHARED ON)
  set(CMAKE_POSITION_INDEPENDENT_CODE ON)
  # A library uses its own tables, not those that a test program has of the same header.
  add_link_options(-Wl,-Bsymbolic)
endif()

# What is only tested gets the standard library's headers compiled ahead. What is shipped does not: its sources
# shall name what they use, and GCC 12's flow warnings misfire on what was compiled ahead.
set(VORDANE_HEADERS_AHEAD OFF)
if(VORDANE_SANITIZE AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  set(VORDANE_HEADERS_AHEAD ON)
  add_library(vordane_standard_headers OBJECT ${PROJECT_SOURCE_DIR}/cmake/standard_headers.cpp)
  target_compile_options(vordane_standard_headers PRIVATE -Xclang -fno-pch-timestamp)
  target_precompile_headers(vordane_standard_headers PRIVATE <algorithm> <array> <cstdint> <exception> <functional>
    <map> <memory> <optional> <span> <string> <string_view> <utility> <variant> <vector>)
endif()

function(vordane_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} ${VORDANE_LIBRARY_KIND} ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name} PUBLIC ${ARG_LINKS})
  vordane_warnings(${name})
  if(VORDANE_HEADERS_AHEAD)
    target_compile_options(${name} PRIVATE -Xclang -fno-pch-timestamp)  # so that the compiler cache can look into it
    target_precompile_headers(${name} REUSE_FROM vordane_standard_headers)
  endif()
endfunction()

# Tests are compiled far more often than they are waited for. GCC 12's flow warnings misfire on text
# comparisons that were compiled ahead with GoogleTest's headers.
function(vordane_test_options target)
  vordane_warnings(${target})
  # Half of a sanitized test's compilation would go into making it quick.
  target_compile_options(${target} PRIVATE $<IF:$<BOOL:${VORDANE_SANITIZE}>,-O0,-O1>)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(${target} PRIVATE -Wno-stringop-overread -Wno-stringop-overflow -Wno-array-bounds
      -fpch-preprocess)  # without it the compiler cache can't look into compiled headers
  else()
    target_compile_options(${target} PRIVATE -Xclang -fno-pch-timestamp)  # likewise
  endif()
endfunction()

# A test program under CTest, one ctest entry for each of its cases. Rules are tested natively; with
# ALSO_WINDOWS the program is built for Windows too and run there as one entry, with its own TIMEOUT; with
# BOTH_WINES that entry is run under both Wines. With ONE_ENTRY it is one entry natively too: for cases that share what
# is dear to make.
function(vordane_test name)
  cmake_parse_arguments(ARG "ALSO_WINDOWS;BOTH_WINES;ONE_ENTRY" "TIMEOUT" "SOURCES;LINKS" ${ARGN})
  if(CMAKE_CROSSCOMPILING AND NOT ARG_ALSO_WINDOWS)
    return()
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE ${ARG_LINKS} vordane_test_places GTest::gmock GTest::gtest_main)
  vordane_test_options(${name})
  # GoogleTest's headers cost more than most tests: compiled once for all test programs.
  # Not with shared libraries: their code and that of programs is made with different settings.
  if(TARGET vordane_test_headers AND NOT VORDANE_SHARED)
    target_precompile_headers(${name} REUSE_FROM vordane_test_headers)
  endif()
  if(CMAKE_CROSSCOMPILING)
    set(both)
    if(ARG_BOTH_WINES)
      set(both BOTH_WINES)
    endif()
    vordane_windows_test(${name} ${both} COMMAND $<TARGET_FILE:${name}> TIMEOUT ${ARG_TIMEOUT} LABEL ${name})
  elseif(ARG_ONE_ENTRY)
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES TIMEOUT 600 COST 600 LABELS ${name})
  else()
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 120 PROPERTIES TIMEOUT 300 LABELS ${name})
  endif()
endfunction()

# Notes a test program for the kit that runs on workstations (tools/windows-kit). One that has several entries here,
# each with tests of its own, runs each test in a process of its own there.
function(vordane_kit_program limit command)
  if(NOT command MATCHES "^\\$<TARGET_FILE:(.+)>$")
    return()
  endif()
  set(name ${CMAKE_MATCH_1})
  get_property(known GLOBAL PROPERTY VORDANE_KIT_PROGRAMS)
  if(name IN_LIST known)
    return()
  endif()
  set(how whole)
  if(ARGN MATCHES "--gtest_filter=")
    set(how alone)
  endif()
  set_property(GLOBAL APPEND PROPERTY VORDANE_KIT_PROGRAMS ${name})
  set_property(GLOBAL APPEND PROPERTY VORDANE_KIT_ROWS
    "${name}\t$<PATH:RELATIVE_PATH,${command},${PROJECT_BINARY_DIR}>\t${limit}\t${how}\n")
endfunction()

# A Windows test under CTest: a Windows program (a target) or a shell script that starts several, run under
# Wine in a prefix of its own; with BOTH_WINES the 64-bit one a second time, under the newer Wine. Build with the
# Windows presets only. SKIP_CODE is the exit code that says that the test can't be made here; LABEL names the
# program that it tests, where it tests one alone.
function(vordane_windows_test name)
  cmake_parse_arguments(ARG "BOTH_WINES" "TIMEOUT;SKIP_CODE;LABEL" "COMMAND" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 300)
  endif()
  if(NOT ARG_LABEL)
    set(ARG_LABEL suite)
  endif()
  set(judges ${VORDANE_ARCH})
  if(ARG_BOTH_WINES AND VORDANE_ARCH STREQUAL "x64")
    list(APPEND judges x64-next)
  endif()
  # The test's own limit comes first, so that it can say what it waited for.
  math(EXPR limit "${ARG_TIMEOUT} - 40")
  vordane_kit_program(${limit} ${ARG_COMMAND})
  foreach(judge ${judges})
    add_test(NAME ${judge}.${name}
      COMMAND ${PROJECT_SOURCE_DIR}/tests/windows/run.sh ${judge} ${ARG_COMMAND})
    # The long ones begin first, so that none is waited for alone at the end.
    set_tests_properties(${judge}.${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT} COST ${ARG_TIMEOUT} LABELS ${ARG_LABEL}
      ENVIRONMENT "VORDANE_TEST_TIMEOUT=${limit};VORDANE_BUILD=${PROJECT_BINARY_DIR}")
    if(ARG_SKIP_CODE)
      set_tests_properties(${judge}.${name} PROPERTIES SKIP_RETURN_CODE ${ARG_SKIP_CODE})
    endif()
  endforeach()
endfunction()
