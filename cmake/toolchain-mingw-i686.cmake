# 32-bit Windows programs with MinGW-w64.
#
# KWA_THREADS chooses the compiler's thread variant where the distribution ships both. "win32" for what we ship: its
# runtime imports nothing that Windows XP lacks. "posix" for the unit tests: GoogleTest needs std::mutex.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86)
set(kwaTriple i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
