# vordane_program(TARGET DESCRIPTION text [NAME name] [UTF8]): icon, version resource and manifest of a shipped Windows
# program. The manifest says that it asks for no more rights than whoever starts it has, draws with today's
# controls, knows monitors of different scaling and long paths. UTF8 makes the process's narrow texts UTF-8: not for
# programs that load the workstation's Access engine, which reads narrow texts in the workstation's code page.

# The icon is drawn at build time, by a program of this machine.
set(VORDANE_ICON ${PROJECT_BINARY_DIR}/vordane.ico)
set(icon_source ${PROJECT_SOURCE_DIR}/programs/vordane/icon/main.cpp)
add_custom_command(OUTPUT ${VORDANE_ICON}
  COMMAND ${VORDANE_HOST_CXX} -std=c++20 ${icon_source} -o ${PROJECT_BINARY_DIR}/vordane-icon
  COMMAND ${PROJECT_BINARY_DIR}/vordane-icon > ${VORDANE_ICON}
  DEPENDS ${icon_source} COMMENT "Drawing vordane.ico" VERBATIM)
add_custom_target(vordane_icon DEPENDS ${VORDANE_ICON})

function(vordane_program target)
  cmake_parse_arguments(ARG "UTF8" "DESCRIPTION;NAME" "" ${ARGN})
  set(description "${ARG_DESCRIPTION}")
  set(internal_name ${target})
  if(ARG_NAME)
    set(internal_name ${ARG_NAME})
  endif()
  get_target_property(suffix ${target} SUFFIX)
  if(NOT suffix)
    set(suffix .exe)
  endif()
  set(file_name ${internal_name}${suffix})
  set(code_page "")
  if(ARG_UTF8)
    set(code_page "      <activeCodePage xmlns=\"http://schemas.microsoft.com/SMI/2019/WindowsSettings\">UTF-8</activeCodePage>\n")
  endif()
  set(base ${CMAKE_CURRENT_BINARY_DIR}/${target}-program)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/program.manifest.in ${base}.manifest @ONLY)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/program.rc.in ${base}.rc @ONLY)
  set_source_files_properties(${base}.rc PROPERTIES OBJECT_DEPENDS "${VORDANE_ICON};${base}.manifest")
  target_sources(${target} PRIVATE ${base}.rc)
  add_dependencies(${target} vordane_icon)
endfunction()
