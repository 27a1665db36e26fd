# The common part of the MinGW-w64 toolchain files. Finds the compilers of kwaTriple, preferably those of the thread
# variant.
if(NOT DEFINED KWA_THREADS)
  set(KWA_THREADS win32)
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES KWA_THREADS)

find_program(CMAKE_CXX_COMPILER NAMES ${kwaTriple}-g++-${KWA_THREADS} ${kwaTriple}-g++)
find_program(CMAKE_C_COMPILER NAMES ${kwaTriple}-gcc-${KWA_THREADS} ${kwaTriple}-gcc)
find_program(CMAKE_RC_COMPILER NAMES ${kwaTriple}-windres windres)
if(NOT CMAKE_CXX_COMPILER OR NOT CMAKE_C_COMPILER OR NOT CMAKE_RC_COMPILER)
  message(FATAL_ERROR "No MinGW-w64 compiler for ${kwaTriple}; script/setup installs it.")
endif()
set(CMAKE_ASM_COMPILER ${CMAKE_C_COMPILER})

set(CMAKE_FIND_ROOT_PATH /usr/${kwaTriple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Wine runs the tests.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine)
