# kwa_header_library(NAME FOLDER HEADER PACKAGE): the target NAME, a header-only library of the build machine, also for
# Windows programs. A cross build gets a copy of FOLDER, because the include folder of the build machine also contains
# the headers of that machine's C library.
include_guard(GLOBAL)

function(kwa_header_library name folder header package)
  find_path(${name}_PARENT ${folder}/${header} NO_CMAKE_FIND_ROOT_PATH DOC "Folder that holds ${folder}/${header}")
  if(NOT ${name}_PARENT)
    message(FATAL_ERROR "${folder}/${header} was not found; script/setup installs it (${package}).")
  endif()
  file(COPY ${${name}_PARENT}/${folder} DESTINATION ${CMAKE_BINARY_DIR}/headers/${name})
  add_library(${name} INTERFACE)
  target_include_directories(${name} SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/headers/${name})
endfunction()
