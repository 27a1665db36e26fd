# 32-bit Windows programs with MinGW-w64.
#
# KWA_THREADS chooses the thread variant of the compiler, if the distribution has both. "win32" is for the installer:
# its runtime imports nothing that Windows XP lacks. "posix" is for the tests: GoogleTest needs std::mutex.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86)
set(kwaTriple i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
