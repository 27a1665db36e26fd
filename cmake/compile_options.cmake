# Compiler settings for all projects of this tree.
option(KWA_WERROR "Treat compiler warnings as errors" OFF)

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-Wall> $<$<COMPILE_LANGUAGE:CXX>:-Wextra>
  $<$<COMPILE_LANGUAGE:CXX>:-Wshadow> $<$<COMPILE_LANGUAGE:CXX>:-Wconversion>)
if(KWA_WERROR)
  add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-Werror>)
endif()

# Binaries contain no path of the build machine and no date, so that builds of the same files are identical.
cmake_path(GET CMAKE_CURRENT_LIST_DIR PARENT_PATH kwaRoot)
add_compile_options(
  "$<$<COMPILE_LANGUAGE:CXX,ASM>:-ffile-prefix-map=${kwaRoot}=.>"
  "$<$<COMPILE_LANGUAGE:CXX,ASM>:-ffile-prefix-map=${CMAKE_BINARY_DIR}=build>"
  "$<$<COMPILE_LANGUAGE:CXX>:-Werror=date-time>")

if(WIN32)
  add_compile_definitions(_WIN32_WINNT=0x0501 WINVER=0x0501)
  # The printf functions of Windows: those of MinGW call fputc once per character and take 29 KB. The headers of
  # libstdc++ choose MinGW's functions in spite of this definition, so <stdio.h> is included before them.
  add_compile_definitions(__USE_MINGW_ANSI_STDIO=0)
  add_compile_options("$<$<COMPILE_LANGUAGE:CXX>:SHELL:-include stdio.h>")
  add_link_options(-static -Wl,--no-insert-timestamp)
endif()
