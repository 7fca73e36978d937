# vordane_type_library(TARGET NAME SOURCES ...): the type library that NAME's member tables make, as resource
# `1 TYPELIB` of TARGET. SOURCES hold the tables, the description of the library and a main that prints the
# IDL; they are compiled for this machine, also in a build for Windows, and must need nothing but src.
find_program(VORDANE_HOST_CXX NAMES c++ g++ REQUIRED)
find_program(VORDANE_WIDL NAMES x86_64-w64-mingw32-widl REQUIRED)
set(VORDANE_WIDL_FLAGS -I /usr/include/wine/wine/windows -L /usr/lib/x86_64-linux-gnu/wine/x86_64-windows)

set(vordane_idl_sources idl.cpp automation.cpp)
list(TRANSFORM vordane_idl_sources PREPEND ${PROJECT_SOURCE_DIR}/src/platform/)
foreach(name text numbers utf8 case)
  list(APPEND vordane_idl_sources ${PROJECT_SOURCE_DIR}/src/text/${name}.cpp)
endforeach()

function(vordane_type_library target name)
  cmake_parse_arguments(ARG "" "" "SOURCES" ${ARGN})
  set(base ${CMAKE_CURRENT_BINARY_DIR}/${name})
  add_custom_command(OUTPUT ${base}.idl
    COMMAND ${VORDANE_HOST_CXX} -std=c++20 -O0 -I ${PROJECT_SOURCE_DIR}/src -I ${PROJECT_BINARY_DIR}/src/text
            ${ARG_SOURCES} ${vordane_idl_sources} -o ${base}-idl
    COMMAND ${base}-idl > ${base}.idl
    DEPENDS ${ARG_SOURCES} ${vordane_idl_sources} vordane_text
    COMMENT "Writing ${name}.idl from the member tables" VERBATIM)
  add_custom_command(OUTPUT ${base}.tlb
    COMMAND ${VORDANE_WIDL} ${VORDANE_WIDL_FLAGS} -t -o ${base}.tlb ${base}.idl
    DEPENDS ${base}.idl COMMENT "Compiling ${name}.tlb" VERBATIM)
  file(GENERATE OUTPUT ${base}-tlb.rc CONTENT "1 TYPELIB \"${base}.tlb\"\n")
  set_source_files_properties(${base}-tlb.rc PROPERTIES OBJECT_DEPENDS ${base}.tlb)
  target_sources(${target} PRIVATE ${base}-tlb.rc)
endfunction()
