# vordane_debian_headers(TARGET FOLDER): a library of Debian's that is headers alone, in /usr/include/FOLDER, for this
# target's own sources. The compilers for Windows don't look where Debian keeps it.
function(vordane_debian_headers target folder)
  set(include ${PROJECT_BINARY_DIR}/include-${folder})
  file(MAKE_DIRECTORY ${include})
  file(CREATE_LINK /usr/include/${folder} ${include}/${folder} SYMBOLIC)
  target_include_directories(${target} SYSTEM PRIVATE ${include})
endfunction()
