# vordane_type_library(TARGET NAME SOURCES ...): the type library that NAME's member tables make, as resource
# `1 TYPELIB` of TARGET. SOURCES hold the tables, the description of the library and a main that prints the
# IDL; they are compiled for this machine, also in a build for Windows, and must need nothing but src. With HEADER the
# same main is asked for the header for hosts in C++ (--header): target NAME-header makes NAME.h, in the folder that
# the target's property VORDANE_FOLDER names.
find_program(VORDANE_WIDL NAMES x86_64-w64-mingw32-widl REQUIRED)
# It writes into a library when it was compiled; the same sources shall give the same bytes.
find_program(VORDANE_FAKETIME NAMES faketime REQUIRED)
# The library of a 32-bit program says that its numbers are those of a 32-bit system.
math(EXPR VORDANE_WORD_SIZE "8 * ${CMAKE_SIZEOF_VOID_P}")
set(VORDANE_WIDL_FLAGS -m${VORDANE_WORD_SIZE} -I /usr/include/wine/wine/windows -L /usr/lib/x86_64-linux-gnu/wine/x86_64-windows)

# The few sources behind every table: the IDL writer and the text library.
function(vordane_idl_sources out)
  get_target_property(names vordane_text SOURCES)
  get_target_property(folder vordane_text SOURCE_DIR)
  list(FILTER names INCLUDE REGEX "^[a-z0-9_]+\\.cpp$")
  list(TRANSFORM names PREPEND ${folder}/)
  foreach(name idl cpp_header automation)
    list(APPEND names ${PROJECT_SOURCE_DIR}/src/platform/${name}.cpp)
  endforeach()
  set(${out} ${names} PARENT_SCOPE)
endfunction()

function(vordane_type_library target name)
  cmake_parse_arguments(ARG "HEADER" "" "SOURCES" ${ARGN})
  vordane_idl_sources(vordane_idl_sources)
  set(base ${CMAKE_CURRENT_BINARY_DIR}/${name})
  add_custom_command(OUTPUT ${base}.idl
    COMMAND ${VORDANE_HOST_CXX} -std=c++20 -O0 -I ${PROJECT_SOURCE_DIR}/src -I ${PROJECT_BINARY_DIR}/src/text
            ${ARG_SOURCES} ${vordane_idl_sources} -o ${base}-idl
    COMMAND ${base}-idl > ${base}.idl
    DEPENDS ${ARG_SOURCES} ${vordane_idl_sources} vordane_text
    COMMENT "Writing ${name}.idl from the member tables" VERBATIM)
  add_custom_command(OUTPUT ${base}.tlb
    COMMAND ${CMAKE_COMMAND} -E env TZ=UTC ${VORDANE_FAKETIME} -f "2026-01-01 00:00:00"
            ${VORDANE_WIDL} ${VORDANE_WIDL_FLAGS} -t -o ${base}.tlb ${base}.idl
    DEPENDS ${base}.idl COMMENT "Compiling ${name}.tlb" VERBATIM)
  file(GENERATE OUTPUT ${base}-tlb.rc CONTENT "1 TYPELIB \"${base}.tlb\"\n")
  set_source_files_properties(${base}-tlb.rc PROPERTIES OBJECT_DEPENDS ${base}.tlb)
  target_sources(${target} PRIVATE ${base}-tlb.rc)
  if(ARG_HEADER)
    add_custom_command(OUTPUT ${base}.h
      COMMAND ${base}-idl --header > ${base}.h
      DEPENDS ${base}.idl COMMENT "Writing ${name}.h from the member tables" VERBATIM)
    add_custom_target(${name}-header DEPENDS ${base}.h)
    set_target_properties(${name}-header PROPERTIES VORDANE_FOLDER ${CMAKE_CURRENT_BINARY_DIR})
  endif()
endfunction()
